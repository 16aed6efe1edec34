#pragma once

// The Containers tab over a `docker` whose answers are files and whose actions a test may hold up.

#include "ContentView/Screens/ContainerLogSheet.h"
#include "ContentView/Screens/ContainersView.h"
#include "Look/Colours.h"
#include "Look/LogBox.h"
#include "Look/NoteText.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/RowList.h"
#include "Look/Rows/StatusDot.h"
#include "Look/Typography.h"
#include "Screens/PaintWatch.h"
#include "Screens/TestWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QWindow>

#include <tuple>

using namespace Qt::StringLiterals;
using ByName::find;
using ByName::isOffered;
using ByName::press;
using ByName::shows;

inline const auto noContainers = u"No containers."_s;
inline const auto notFound = u"The docker command was not found. Install OrbStack (it provides docker) and start it."_s;

inline QByteArray lineOf(const QString &name, const QString &state, const QString &ports = {})
{
    return u"{\"ID\":\"id-%1\",\"Names\":\"%1\",\"Image\":\"nginx\",\"State\":\"%2\",\"Status\":\"Up 2 minutes\",\"Ports\":\"%3\"}\n"_s
        .arg(name, state, ports)
        .toUtf8();
}

class ContainersViewTest : public testing::Test
{
public:
    ~ContainersViewTest() override { release(); }

protected:
    ContainersViewTest()
    {
        // `ps` prints a file, `logs` another; every other verb waits while there is a file "hold".
        tools().addTool(u"docker"_s,
                        u"cd '%1' || exit 1\ncase \"$1\" in\nps) cat containers ;;\nlogs) cat log ;;\n"
                        "*) while [ -e hold ]; do sleep 0.02; done\n"
                        "   if [ -e fail ]; then cat fail >&2; exit 1; fi ;;\nesac"_s.arg(tools().path(u"."_s)));
        setContainers(lineOf(u"web"_s, u"Running"_s, u"0.0.0.0:8080->80/tcp"_s) + lineOf(u"db"_s, u"exited"_s));
        write(u"log"_s, "a line\n");
    }

    ContainersView &show()
    {
        window.showRunning({u"box"_s});
        window.content().setTab(AppTab::containers);
        EXPECT_TRUE(waitFor(window.containers.refresh()));
        return view();
    }

    ContainersView &view() { return *window.content().findChild<ContainersView *>(); }
    RowList &list() { return *view().findChild<RowList *>(); }
    QLineEdit &field(const QString &placeholder) { return *find<QLineEdit>(view(), placeholder); }
    QLineEdit &image() { return field(u"Image (nginx:latest)"_s); }
    TestTools &tools() { return window.orbStack.tools(); }
    ContainerLogSheet *sheet() { return window.content().findChild<ContainerLogSheet *>(); }
    qsizetype calls(const QString &arguments) { return tools().calls(u"docker"_s).count(arguments); }

    QStringList rowTexts(int index)
    {
        QStringList texts;
        for (const PlainLabel *label : list().row(index)->findChildren<PlainLabel *>())
            texts << label->text();
        return texts;
    }

    void write(const QString &name, const QByteArray &content) { tools().addFile(name, content); }
    void setContainers(const QByteArray &lines) { write(u"containers"_s, lines); }
    void hold() { write(u"hold"_s, {}); }
    void release() { QFile::remove(tools().path(u"hold"_s)); }

    bool untilIdle()
    {
        return waitUntil([this] { return !window.containers.busy(); });
    }

    TestWindow window;
};
