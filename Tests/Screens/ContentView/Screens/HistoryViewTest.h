#pragma once

// The History tab, with dates written as in Britain.

#include "ContentView/Screens/HistoryView.h"
#include "Look/Colours.h"
#include "Look/NoteText.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/RowList.h"
#include "Screens/TestWindow.h"

#include <QDir>
#include <QPushButton>

using namespace Qt::StringLiterals;
using ByName::find;
using ByName::isOffered;
using ByName::press;
using ByName::shows;

inline const auto noRuns = u"No runs yet."_s;

inline HistoryEntry entryOf(const QString &command)
{
    HistoryEntry entry;
    entry.id = QUuid::createUuid();
    entry.command = command;
    entry.machine = u"box"_s;
    entry.exitCode = 0;
    entry.date = QDateTime(QDate(2026, 3, 1), QTime(14, 5, 9), Qt::UTC);
    entry.duration = 3.2;
    return entry;
}

class HistoryViewTest : public testing::Test
{
protected:
    HistoryViewTest()
    {
        qunsetenv("LC_ALL");
        qputenv("LC_TIME", "en_GB.UTF-8");
        qputenv("TZ", "UTC");
    }

    HistoryView &show()
    {
        window.show().setTab(AppTab::history);
        return view();
    }

    HistoryView &view() { return *window.content().findChild<HistoryView *>(); }
    RowList &list() { return *view().findChild<RowList *>(); }

    QStringList rowTexts(int index)
    {
        QStringList texts;
        for (const PlainLabel *label : list().row(index)->findChildren<PlainLabel *>())
            texts << label->text();
        return texts;
    }

    void addNumbered(int count)
    {
        for (int number = 0; number < count; ++number)
            window.history.add(entryOf(u"echo %1"_s.arg(number)));
    }

    TestWindow window;
};
