#include "QuittingTest.h"
#include "Screens/TimerWatch.h"

#include <QDir>
#include <QPushButton>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

TEST(Quitting, WaitsFiveSecondsForARunAndTenInAll)
{
    EXPECT_EQ(Quitting::Times().untilAskedAgain, 5s);
    EXPECT_EQ(Quitting::Times().untilTheEnd, 10s);
}

TEST_F(QuittingTest, KeepsTheRunGoingOnReturnAndOnEscape)
{
    guarded.startRun(u"exec sleep 600"_s);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        EXPECT_FALSE(quit());
        QMessageBox *question = asked(u"A run is in progress."_s);
        ASSERT_TRUE(QTest::qWaitForWindowActive(question));
        QTest::keyClick(question, key);
        EXPECT_EQ(guarded.question(), nullptr);
    }
    EXPECT_TRUE(run.isRunning());
}

TEST_F(QuittingTest, AsksOverAWindowThatWasMinimised)
{
    guarded.startRun(u"exec sleep 600"_s);
    guarded.window.showMinimized();
    EXPECT_FALSE(quit());
    EXPECT_NE(asked(u"A run is in progress."_s), nullptr);
    EXPECT_FALSE(guarded.window.isMinimized());
}

TEST_F(QuittingTest, AsksNoMoreAboutARunThatHasEndedAndStaysOpen)
{
    guarded.startRun(tools().waitForFile(u"go"_s));
    EXPECT_FALSE(quit());
    ASSERT_NE(asked(u"A run is in progress."_s), nullptr);
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([this] { return guarded.question() == nullptr; }));
    EXPECT_FALSE(run.isRunning());
    // Nothing ends it but the time that it is given.
    QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(5); });
    EXPECT_EQ(QApplication::exec(), 5);
}

TEST_F(QuittingTest, StaysOpenAndSaysSoWhenTheMachineCouldNotBeDeleted)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    const QMessageBox *question = stopToQuit();
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->informativeText(),
              u"The output tells why. As long as it is there, the Machines tab lists it and deletes it."_s);
    EXPECT_EQ(question->defaultButton()->text(), u"Keep open"_s);
    bool isPatienceOver = false;
    QTimer::singleShot(2 * atOnce.untilAskedAgain, &guarded.window, [&] { isPatienceOver = true; });
    EXPECT_TRUE(waitUntil([&] { return isPatienceOver; }));
    EXPECT_EQ(guarded.question(), question) << "the run has ended, whose end was waited for";
    press(u"Keep open"_s);
    EXPECT_TRUE(guarded.window.isVisible());
    EXPECT_TRUE(quit()) << "who wants to quit then knows of it";
}

TEST_F(PatientQuittingTest, SaysSoAsSoonAsTheListOfMachinesTells)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    EXPECT_NE(stopToQuit(), nullptr);
}

TEST_F(PatientQuittingTest, NamesTheMachineThatStaysWhenARunWasStartedMeanwhileWhichIsAskedAboutThen)
{
    addOrbThatCannotDelete(true, tools().waitForFile(u"go"_s) + u"exit 1"_s);
    guarded.startRun(u"exec sleep 600"_s);
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    const QString name = run.undeletedMachine();
    EXPECT_FALSE(quit()) << "the machine that stays is still to be told";
    QCoreApplication::processEvents(); // it is looked for
    EXPECT_FALSE(quit());
    guarded.startRun(u"exec sleep 600"_s);
    tools().addFile(u"go"_s);
    ASSERT_NE(asked(name + u" could not be deleted."_s), nullptr);
    QTimer::singleShot(0, &guarded.window, [this] {
        press(u"Quit anyway"_s);
        EXPECT_NE(asked(u"A run is in progress."_s), nullptr);
        QCoreApplication::exit(5);
    });
    EXPECT_EQ(QApplication::exec(), 5);
    EXPECT_TRUE(run.isRunning());
}

TEST_F(PatientQuittingTest, EndsInTimeAfterATerminationSignalWhateverIsAnsweredThen)
{
    startIgnoringRun();
    EXPECT_FALSE(quit());
    guarded.guard.quitWithoutQuestion();
    press(u"Stop it and quit"_s);
    EXPECT_TRUE(endsByItself());
    tools().addFile(u"go"_s);
}

TEST_F(PatientQuittingTest, EndsInTimeAfterATerminationSignalThatCameWhileAMachineWasTold)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    ASSERT_NE(stopToQuit(), nullptr);
    tools().addTool(u"orb"_s, ignoring + tools().waitForFile(u"go"_s));
    guarded.tools.machines.create(Distro::debian, u"box"_s);
    guarded.guard.quitWithoutQuestion();
    QTimer::singleShot(0, &guarded.window, [this] { press(u"Quit anyway"_s); });
    EXPECT_TRUE(endsByItself());
    tools().addFile(u"go"_s);
}

TEST_F(QuittingTest, StaysOpenAlsoWhenNobodyKnowsWhetherTheMachineIsThere)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    tools().addTool(u"orb"_s, u"[ $1 != list ] || echo 'no list' >&2; exit 1"_s);
    EXPECT_NE(stopToQuit(), nullptr);
}

TEST_F(QuittingTest, LeavesAMachineThatCouldNotBeDeletedWhenToldTo)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    EXPECT_FALSE(guarded.window.close());
    press(u"Stop it and quit"_s);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    ASSERT_NE(asked(run.undeletedMachine() + u" could not be deleted."_s), nullptr);
    QTimer::singleShot(0, &guarded.window, [this] { press(u"Quit anyway"_s); });
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(history.entries().size(), 1);
}

TEST_F(QuittingTest, SaysSoOnceWhenTheListOfMachinesTakesLong)
{
    addOrbThatCannotDelete(true, tools().waitForFile(u"go"_s));
    guarded.startRun(u"exec sleep 600"_s);
    const QMessageBox *question = stopToQuit();
    ASSERT_NE(question, nullptr);
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !guarded.tools.machines.machines().isEmpty(); }));
    EXPECT_EQ(guarded.question(), question);
    press(u"Keep open"_s);
    EXPECT_TRUE(quit());
}

TEST_F(QuittingTest, SaysSoInsteadOfThatTheRunHasNotEndedOnceItHas)
{
    addOrbThatCannotDelete(true, tools().waitForFile(u"list"_s));
    startIgnoringRun();
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    ASSERT_NE(asked(u"The run has not ended yet."_s), nullptr);
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    EXPECT_NE(asked(run.undeletedMachine() + u" could not be deleted."_s), nullptr);
}

TEST_F(QuittingTest, TakesNoListThatWasAskedForAnotherMachine)
{
    addOrbThatCannotDelete(true, u"if mkdir '%1'; then\n"_s.arg(tools().path(u"asked"_s)) +
                                     tools().waitForFile(u"first"_s) + u"else\n"_s + tools().waitForFile(u"second"_s) +
                                     u"fi"_s);
    guarded.startRun(u"exec sleep 600"_s);
    ASSERT_NE(stopToQuit(), nullptr);
    EXPECT_TRUE(waitUntil([this] { return QDir(tools().path(u"asked"_s)).exists(); })) << "it is the first to ask";
    press(u"Keep open"_s);
    guarded.startRun(u"exec sleep 600"_s);
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    QCoreApplication::processEvents();
    // It holds the second machine only.
    tools().addFile(u"first"_s);
    EXPECT_TRUE(waitUntil([&] { return !guarded.tools.machines.machines().isEmpty(); }));
    tools().addFile(u"second"_s);
    EXPECT_NE(asked(run.undeletedMachine() + u" could not be deleted."_s), nullptr);
}

TEST_F(PatientQuittingTest, IsNotHeldUpByTheDeletionOfAMachineThatWasNeverMade)
{
    addOrbThatCannotDelete(false);
    guarded.startRun(u"exec sleep 600"_s);
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    EXPECT_TRUE(endsByItself());
    EXPECT_NE(run.undeletedMachine(), QString());
}

TEST_F(QuittingTest, AsksAgainWhenTheRunDoesNotEndAndMayBeCalledOff)
{
    const TimerWatch patience(atOnce.untilAskedAgain);
    startIgnoringRun();
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    const QMessageBox *question = asked(u"The run has not ended yet."_s);
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->informativeText(),
              u"Quitting now leaves it to itself. A disposable machine that stays behind is named in the Machines tab "
              "after the next start."_s);
    EXPECT_EQ(question->defaultButton()->text(), u"Keep open"_s);
    ASSERT_NE(patience.timer(), nullptr);
    EXPECT_FALSE(patience.timer()->isActive()) << "it is asked once more, not again and again";
    press(u"Keep open"_s);
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    EXPECT_EQ(guarded.question(), nullptr);
    // Nothing ends it any more but the time that it is given.
    QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(5); });
    EXPECT_EQ(QApplication::exec(), 5);
}

TEST_F(QuittingTest, QuitsWhenTheRunEndsWhileItIsAskedAgain)
{
    startIgnoringRun();
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    ASSERT_NE(asked(u"The run has not ended yet."_s), nullptr);
    tools().addFile(u"go"_s);
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
}

TEST_F(QuittingTest, LeavesARunThatDoesNotEndWhenToldToAndBeginsItsDeletion)
{
    startIgnoringRun();
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    ASSERT_NE(asked(u"The run has not ended yet."_s), nullptr);
    QTimer::singleShot(0, &guarded.window, [this] { press(u"Quit anyway"_s); });
    EXPECT_TRUE(endsByItself());
    EXPECT_TRUE(run.isRunning());
    ASSERT_EQ(history.entries().size(), 1);
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
    EXPECT_TRUE(waitUntil([this] { return hasBegunToDelete(); }));
    tools().addFile(u"go"_s);
}

TEST_F(QuittingTest, AsksWhereTheHistoryCannotBeSaved)
{
    const QString path = *history.fileURL();
    ASSERT_TRUE(QDir().mkpath(path)); // a folder in the file's place
    HistoryEntry entry;
    entry.id = QUuid::createUuid();
    history.add(entry);
    ASSERT_TRUE(history.saveError());
    const auto title = u"The history could not be saved."_s;
    EXPECT_FALSE(quit());
    ASSERT_NE(asked(title), nullptr);
    EXPECT_EQ(guarded.question()->informativeText(),
              u"what has its name is not a file. Quitting now leaves its file as it is."_s);
    EXPECT_FALSE(quit()) << "asked already";
    press(u"Keep open"_s);
    EXPECT_TRUE(waitUntil([this] { return guarded.question() == nullptr; }));

    EXPECT_FALSE(quit());
    ASSERT_NE(asked(title), nullptr);
    QTimer::singleShot(0, qApp, [this] { press(u"Quit anyway"_s); });
    EXPECT_EQ(QApplication::exec(), 0);

    ASSERT_TRUE(QDir().rmdir(path));
    EXPECT_TRUE(quit()) << "it is tried once more";
    EXPECT_FALSE(history.saveError());
    EXPECT_TRUE(QFileInfo(path).isFile());
}
