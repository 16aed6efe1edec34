#pragma once

// The Machines tab over an `orb` whose operations a test may hold up.

#include "ContentView/Screens/MachinesView.h"
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
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using ByName::find;
using ByName::isOffered;
using ByName::press;
using ByName::shows;

inline const auto notRunning = u"OrbStack is not running, so machines cannot be listed."_s;
inline const auto noMachines = u"No machines yet. Create one above."_s;

class MachinesViewTest : public testing::Test
{
protected:
    /// Shows the tab over a running OrbStack with these machines.
    MachinesView &show(const QStringList &names = {u"box"_s, u"web"_s})
    {
        window.showRunning(names).setTab(AppTab::machines);
        return view();
    }

    MachinesView &view() { return *window.content().findChild<MachinesView *>(); }
    RowList &list() { return *view().findChild<RowList *>(); }
    QLineEdit &nameField() { return *find<QLineEdit>(view(), u"Name (e.g. scratch)"_s); }

    QStringList rowTexts(int index)
    {
        QStringList texts;
        for (const PlainLabel *label : list().row(index)->findChildren<PlainLabel *>())
            texts << label->text();
        return texts;
    }

    bool hasStore(const QStringList &names)
    {
        QStringList listed;
        for (const Machine &machine : window.machines.machines())
            listed << machine.name;
        return listed == names;
    }

    /// An `orb` whose verbs other than status and list wait for release().
    void holdOperations(const QString &output = {})
    {
        window.orbStack.tools().addTool(
            u"orb"_s, u"cd '%1' || exit 1\ncase \"$1\" in\nstatus) cat state ;;\nlist) cat machines ;;\n"
                      "*) printf '%2'; while [ ! -e go ]; do sleep 0.02; done; [ ! -e fail ] ;;\nesac"_s.arg(
                          window.orbStack.tools().path(u"."_s), output));
    }

    void release() { touch(u"go"_s); }

    void touch(const QString &name)
    {
        QFile file(window.orbStack.tools().path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }

    bool untilIdle()
    {
        return waitUntil([this] { return !window.machines.busy(); });
    }

    qsizetype calls(const QString &arguments) { return window.orbStack.calls(arguments); }

    QMessageBox *alert() { return window.content().findChild<QMessageBox *>(); }

    TestWindow window;
};
