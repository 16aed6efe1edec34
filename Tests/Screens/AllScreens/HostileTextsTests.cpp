// Texts from outside that try to be more than texts, in every place where one arrives.

#include "Look/LogBox.h"
#include "Screens/AllScreens/HostileScreens.h"
#include "Screens/ContentView/Screens/Run/RunViewSteps.h"
#include "TidewellApp/Files/FileDialogs.h"
#include "TidewellApp/Files/SavingSheet.h"
#include "TidewellApp/Quitting/Quitting.h"

#include <QMenu>
#include <QMenuBar>

#include <functional>

namespace
{

/// Calls `look` for a window with each of the texts.
void withEach(const std::function<void(HostileScreens &)> &look)
{
    for (const HostileText &hostile : allHostileTexts()) {
        SCOPED_TRACE(hostile.name);
        HostileScreens screens(hostile);
        look(screens);
    }
}

HistoryEntry entryOf(const QString &text)
{
    return {.id = QUuid::createUuid(),
            .command = text,
            .machine = text,
            .exitCode = std::nullopt,
            .note = text,
            .date = QDateTime::currentDateTimeUtc(),
            .duration = 1};
}

void waitForAlert()
{
    ASSERT_TRUE(waitUntil([] { return alert() != nullptr; }));
}

void closeAlert()
{
    alert()->reject();
    ASSERT_TRUE(waitUntil([] { return alert() == nullptr; }));
}

/// Waits until a log shows the text; what is added to it comes in its next frame.
void waitForLog(HostileScreens &screens, const QString &name)
{
    ASSERT_TRUE(waitUntil([&] {
        const auto *log = find<LogBox>(screens.window(), name);
        return log != nullptr && TextWalk::holds(log->shownText(), screens.text());
    }));
}

} // namespace

TEST(HostileTexts, AreShownAsTheyAreInTheNoteAndTheLogOfOrbStack)
{
    withEach([](HostileScreens &screens) {
        SetupController &setup = screens.below().setup;
        setup.start();
        ASSERT_TRUE(waitUntil([&] { return !setup.busy() && TextWalk::holds(setup.log(), screens.text()); }));
        ASSERT_TRUE(waitFor(setup.stop()));
        waitForLog(screens, u"Setup log"_s);
        screens.expectAsItIs({u"NoteText"_s, u"LogBox"_s});
    });
}

TEST(HostileTexts, AreShownAsTheyAreOnTheRunScreen)
{
    withEach([](HostileScreens &screens) {
        screens.expectAsItIs({u"ScriptEditor"_s, u"MachinePicker"_s});
        screens.hold();
        RunController &run = screens.below().run;
        run.start({.script = u"true"_s,
                   .label = screens.text(),
                   .machine = screens.machine(),
                   .distro = {},
                   .folder = screens.text()},
                  &screens.below().history);
        // The machine and the folder, and what is printed to both streams.
        const TextView &record = run.transcript().record();
        ASSERT_TRUE(waitUntil(
            [&] { return !run.isRunning() || record.text(record.begin(), record.end()).count(TextWalk::mark) == 4; }));
        EXPECT_EQ(run.isRunning(), !screens.hasNul());
        if (run.isRunning())
            screens.expectAsItIs({u"PlainLabel"_s, u"OutputPane"_s});
        screens.release();
        ASSERT_TRUE(waitUntil([&] { return !run.isRunning(); }));
        screens.expectAsItIs({u"OutputPane"_s});
        screens.window().showAllOutput();
        screens.expectAsItIs({u"OutputPane"_s});
    });
}

TEST(HostileTexts, AreShownAsTheyAreAsTheSharedFolder)
{
    withEach([](HostileScreens &screens) {
        if (screens.text().contains(u"//"_s))
            return; // which a path loses
        press(screens.window(), u"Share a folder…"_s);
        auto *dialog = screens.window().findChild<QFileDialog *>();
        ASSERT_NE(dialog, nullptr);
        dialog->reject();
        Q_EMIT dialog->fileSelected(u"/nowhere/"_s + screens.text());
        screens.expectAsItIs({u"PlainLabel"_s});
    });
}

TEST(HostileTexts, AreShownAsTheyAreInTheListOfMachines)
{
    withEach([](HostileScreens &screens) {
        screens.window().findChild<QComboBox *>()->showPopup();
        screens.expectAsItIs({u"MachinePicker"_s});
        screens.window().findChild<QComboBox *>()->hidePopup();
    });
}

TEST(HostileTexts, AreShownAsTheyAreOnTheMachinesScreen)
{
    withEach([](HostileScreens &screens) {
        screens.window().content().setTab(AppTab::machines);
        screens.expectAsItIs({u"PlainLabel"_s, u"RowWidget"_s, u"QPushButton"_s});
        ASSERT_TRUE(waitFor(screens.below().machines.simple({u"start"_s, screens.machine()})));
        waitForLog(screens, u"Machine log"_s);
        screens.failLists();
        ASSERT_TRUE(waitFor(screens.below().machines.refresh()));
        screens.expectAsItIs({u"PlainLabel"_s, u"RowWidget"_s, u"QPushButton"_s, u"NoteText"_s, u"LogBox"_s});
    });
}

TEST(HostileTexts, AreShownAsTheyAreInQuestionsAboutAMachine)
{
    withEach([](HostileScreens &screens) {
        screens.window().content().setTab(AppTab::machines);
        press(screens.window(), u"Delete"_s);
        waitForAlert();
        screens.expectAsItIs({u"QLabel"_s});
        EXPECT_LE(alert()->width(), screens.window().width());
        closeAlert();

        screens.hold();
        screens.below().machines.remove(screens.machine());
        Quitting quitting(screens.controllers(), screens.window(), screens.window().saving(), {});
        if (screens.below().machines.busy()) {
            EXPECT_FALSE(quitting.mayQuit());
            waitForAlert();
            screens.expectAsItIs({u"QLabel"_s});
            EXPECT_LE(alert()->width(), screens.window().width());
            closeAlert();
        }
        screens.release();
        ASSERT_TRUE(waitUntil([&] { return !screens.below().machines.busy(); }));
    });
}

TEST(HostileTexts, AreShownAsTheyAreOnTheContainersScreenAndInALog)
{
    withEach([](HostileScreens &screens) {
        screens.window().content().setTab(AppTab::containers);
        ContainerStore &containers = screens.below().containers;
        screens.expectAsItIs({u"PlainLabel"_s, u"RowWidget"_s, u"QPushButton"_s});
        if (screens.hasNul())
            return;
        ASSERT_TRUE(waitFor(containers.action(u"stop"_s, screens.container())));
        screens.expectAsItIs({u"PlainLabel"_s, u"RowWidget"_s, u"QPushButton"_s, u"NoteText"_s});
        ASSERT_TRUE(waitFor(containers.logs(screens.container())));
        waitForLog(screens, u"Container log"_s);
        screens.expectAsItIs({u"ContainerLogSheet"_s, u"LogBox"_s});
        containers.setShowLogs(false);
        screens.failLists();
        ASSERT_TRUE(waitFor(containers.refresh()));
        screens.expectAsItIs({u"PlainLabel"_s, u"RowWidget"_s, u"QPushButton"_s, u"NoteText"_s});
    });
}

TEST(HostileTexts, AreShownAsTheyAreOnTheHistoryScreen)
{
    withEach([](HostileScreens &screens) {
        screens.below().history.add(entryOf(screens.text()));
        screens.window().content().setTab(AppTab::history);
        screens.expectAsItIs({u"PlainLabel"_s, u"RowWidget"_s, u"QPushButton"_s});
    });
}

TEST(HostileTexts, AreShownAsTheyAreAsNamesOfFiles)
{
    withEach([](HostileScreens &screens) {
        if (screens.text().contains(u'/'))
            return; // no file has such a name
        QAction *open = screens.window().menuBar()->actions()[0]->menu()->actions()[0];
        open->trigger();
        auto *dialog = screens.window().findChild<QFileDialog *>();
        ASSERT_NE(dialog, nullptr);
        dialog->reject();
        Q_EMIT dialog->fileSelected(u"/nowhere/"_s + screens.text());
        waitForAlert();
        screens.expectAsItIs({u"QLabel"_s});
        EXPECT_LE(alert()->width(), screens.window().width());
        closeAlert();
        SavingSheet sheet(FileDialogs::quotedName(screens.text()), &screens.window());
        sheet.show();
        screens.expectAsItIs({u"SavingSheet"_s, u"PlainLabel"_s});
    });
}

TEST(HostileTexts, AreInNoMenu)
{
    withEach([](HostileScreens &screens) {
        screens.below().history.add(entryOf(screens.text()));
        for (QMenu *menu : screens.window().menuBar()->findChildren<QMenu *>(Qt::FindDirectChildrenOnly)) {
            menu->popup(screens.window().mapToGlobal(QPoint()));
            screens.expectAsItIs({u"ScriptEditor"_s});
            menu->hide();
        }
    });
}
