// Quitting during an operation, and without a question.

#include "QuittingTest.h"
#include "Screens/EventCount.h"

#include <QFile>
#include <QPushButton>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace
{

class SlowRunQuittingTest : public QuittingTest
{
protected:
    /// Stops a run to quit, which ends only when asked again, and before an operation beside it.
    void expectEndAfterRunAndContainer()
    {
        startIgnoringRun();
        startContainer(u"done"_s);
        EXPECT_FALSE(quit());
        press(u"Stop it and quit"_s);
        ASSERT_NE(asked(u"The run has not ended yet."_s), nullptr);
        QTimer::singleShot(0, &guarded.window, [this] {
            tools().addFile(u"go"_s);
            EXPECT_NE(askedAboutContainer(), nullptr);
            tools().addFile(u"done"_s);
        });
        EXPECT_TRUE(endsByItself());
    }
};

/// With more patience than a test has: what ends, ends by itself.
class UnhurriedQuittingTest : public QuittingTest
{
protected:
    UnhurriedQuittingTest() : QuittingTest({.untilAskedAgain = 5min, .untilTheEnd = 5min}) {}
};

} // namespace

TEST_F(QuittingTest, NamesTheOperationThatItWouldCutOffAndWaitsForItByDefault)
{
    tools().addTool(u"brew"_s, tools().waitForFile(u"go"_s) + u"exit 1"_s);
    guarded.tools.setup.install();
    EXPECT_FALSE(quit());
    const QMessageBox *question = asked(u"OrbStack is being installed."_s);
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->informativeText(), u"Quitting now cuts it off."_s);
    EXPECT_EQ(question->defaultButton()->text(), u"Quit when it is done"_s);
    EXPECT_TRUE(ByName::isOffered(*question, u"Keep open"_s));
    EXPECT_FALSE(guarded.window.close());
    EXPECT_EQ(guarded.window.findChildren<QMessageBox *>().size(), 1) << "asked once";
    press(u"Quit when it is done"_s);
    QTimer::singleShot(0, &guarded.window, [this] { tools().addFile(u"go"_s); });
    EXPECT_TRUE(endsByItself());
    EXPECT_FALSE(guarded.tools.setup.busy());
    EXPECT_TRUE(guarded.tools.setup.note().startsWith(u"Install failed (exit 1)"_s)) << "brew was left in peace";
}

TEST_F(QuittingTest, AsksForEveryKindOfOperation)
{
    const QString waits = tools().waitForFile(u"go"_s);
    tools().addTool(u"orb"_s, waits);
    tools().addTool(u"docker"_s, waits);
    TestWindow &window = guarded.tools;
    const auto expectAsked = [&](const QString &title) {
        EXPECT_FALSE(quit());
        EXPECT_NE(asked(title), nullptr);
        press(u"Keep open"_s);
        tools().addFile(u"go"_s);
        EXPECT_TRUE(
            waitUntil([&] { return !window.setup.busy() && !window.machines.busy() && !window.containers.busy(); }));
        QFile::remove(tools().path(u"go"_s));
    };
    window.machines.create(Distro::debian, u"box"_s);
    expectAsked(u"The machine box is being created."_s);
    window.machines.remove(u"b\u202eox"_s);
    expectAsked(u"The machine b⟨U+202E⟩ox is being deleted."_s);
    window.setup.stop();
    expectAsked(u"OrbStack is being stopped."_s);
    const ContainerInfo web{u"0a1b"_s, u"web"_s, u"nginx"_s, u"running"_s, u"Up"_s, QString()};
    window.containers.action(u"rm"_s, web);
    expectAsked(u"The container web is being removed."_s);
    window.containers.runContainer(u"nginx"_s, QString(), QString());
    expectAsked(u"A container of nginx is being started."_s);
    tools().addTool(u"orb"_s, u"[ $1 = start ] && { %1 }; echo Running"_s.arg(waits));
    window.setup.start();
    expectAsked(u"OrbStack is being started."_s);
    EXPECT_TRUE(quit());
}

TEST_F(QuittingTest, StaysOpenForWhoKeepsARunGoingAfterAnEarlierWishToQuit)
{
    startContainer(u"go"_s);
    EXPECT_FALSE(quit());
    press(u"Quit when it is done"_s);
    guarded.startRun(tools().waitForFile(u"end"_s));
    EXPECT_FALSE(quit());
    ASSERT_NE(asked(u"A run is in progress."_s), nullptr);
    press(u"Keep running"_s);
    tools().addFile(u"end"_s);
    EXPECT_TRUE(waitUntil([this] { return !run.isRunning(); }));
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([this] { return !guarded.tools.containers.busy(); }));
    // Nothing ends it any more but the time that it is given.
    QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(5); });
    EXPECT_EQ(QApplication::exec(), 5);
}

TEST_F(QuittingTest, AsksNoMoreAboutAnOperationThatIsDoneAndStaysOpen)
{
    tools().addTool(u"orb"_s, tools().waitForFile(u"go"_s));
    guarded.tools.machines.remove(u"box"_s);
    EXPECT_FALSE(quit());
    ASSERT_NE(asked(u"The machine box is being deleted."_s), nullptr);
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([this] { return guarded.question() == nullptr; }));
    EXPECT_FALSE(guarded.tools.machines.busy());
    // Nothing ends it but the time that it is given.
    QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(5); });
    EXPECT_EQ(QApplication::exec(), 5);
}

TEST_F(QuittingTest, StaysOpenWhenAnOperationIsDoneForWhoHadSaidKeepOpenAfterStoppingARun)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    ASSERT_NE(stopToQuit(), nullptr);
    press(u"Keep open"_s);
    startContainer(u"go"_s);
    EXPECT_FALSE(quit());
    ASSERT_NE(askedAboutContainer(), nullptr);
    QTimer::singleShot(0, &guarded.window, [this] {
        tools().addFile(u"go"_s);
        EXPECT_TRUE(waitUntil([this] { return guarded.question() == nullptr; }));
        QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(5); });
    });
    EXPECT_EQ(QApplication::exec(), 5);
}

TEST_F(UnhurriedQuittingTest, QuitsUnansweredWhenAnOperationIsDoneThatWentOnAfterARunThatWasStoppedToQuit)
{
    guarded.startRun(u"exec sleep 600"_s);
    startContainer(u"go"_s);
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    QTimer::singleShot(0, &guarded.window, [this] {
        EXPECT_NE(askedAboutContainer(), nullptr);
        tools().addFile(u"go"_s);
    });
    EXPECT_TRUE(endsByItself());
}

TEST_F(SlowRunQuittingTest, QuitsUnansweredWhenAnOperationIsDoneThatWentOnAfterARunThatEndedWhileItWasAskedAgain)
{
    expectEndAfterRunAndContainer();
}

TEST_F(SlowRunQuittingTest, QuitsUnansweredWhenAnOperationIsDoneThatWentOnAfterAMachineThatWasNeverMadeWasLookedFor)
{
    addOrbThatCannotDelete(false);
    expectEndAfterRunAndContainer();
}

TEST_F(UnhurriedQuittingTest, QuitsUnansweredWhenAnOperationIsDoneThatWentOnAfterAMachineWasLeftBehind)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    startContainer(u"done"_s);
    ASSERT_NE(stopToQuit(), nullptr);
    QTimer::singleShot(0, &guarded.window, [this] {
        press(u"Quit anyway"_s);
        EXPECT_NE(askedAboutContainer(), nullptr);
        tools().addFile(u"done"_s);
    });
    EXPECT_TRUE(endsByItself());
}

TEST_F(QuittingTest, LeavesAnOperationWhenAskedTwice)
{
    tools().addTool(u"orb"_s, tools().waitForFile(u"go"_s));
    guarded.tools.machines.remove(u"box"_s);
    EXPECT_FALSE(quit());
    press(u"Quit when it is done"_s);
    EXPECT_EQ(guarded.question(), nullptr);
    EXPECT_FALSE(quit());
    const QMessageBox *question = asked(u"The machine box is being deleted."_s);
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->informativeText(), u"Tidewell quits when it is done. Quitting now cuts it off."_s);
    EXPECT_EQ(question->defaultButton()->text(), u"Keep open"_s);
    QTimer::singleShot(0, &guarded.window, [this] { press(u"Quit anyway"_s); });
    EXPECT_TRUE(endsByItself());
    EXPECT_TRUE(guarded.tools.machines.busy());
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([this] { return !guarded.tools.machines.busy(); }));
}

TEST_F(QuittingTest, LeavesAnOperationWhoseToolIgnoresThatItIsCancelled)
{
    const QString asked = tools().path(u"asked"_s);
    tools().addTool(u"brew"_s, u"trap ': > \"%1\"' TERM; echo up\n"_s.arg(asked) + tools().waitForFile(u"go"_s));
    guarded.tools.setup.install();
    EXPECT_TRUE(waitUntil([this] { return guarded.tools.setup.log().endsWith(u"up\n"_s); }));
    guarded.tools.setup.cancel();
    EXPECT_TRUE(waitUntil([&asked] { return QFile::exists(asked); }));
    EXPECT_FALSE(quit());
    press(u"Quit when it is done"_s);
    EXPECT_FALSE(quit());
    QTimer::singleShot(0, &guarded.window, [this] { press(u"Quit anyway"_s); });
    EXPECT_TRUE(endsByItself());
    EXPECT_TRUE(guarded.tools.setup.busy()) << "it is left to itself";
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([this] { return !guarded.tools.setup.busy(); }));
}

TEST_F(QuittingTest, AsksAboutTheOperationThatGoesOnAfterTheRun)
{
    guarded.startRun(u"exec sleep 600"_s);
    startContainer(u"go"_s);
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    bool wasAsked = false;
    QTimer answering;
    QObject::connect(&answering, &QTimer::timeout, &guarded.window, [&] {
        const QMessageBox *question = guarded.question();
        if (question == nullptr || question->text() != u"A container of nginx is being started."_s)
            return;
        wasAsked = true;
        EXPECT_FALSE(run.isRunning());
        press(u"Quit when it is done"_s);
        tools().addFile(u"go"_s);
    });
    answering.start(10ms);
    EXPECT_TRUE(endsByItself());
    EXPECT_TRUE(wasAsked);
}

TEST_F(UnhurriedQuittingTest, StopsTheRunAndEndsWithoutAQuestionWhenToldTo)
{
    guarded.startRun(u"exec sleep 600"_s);
    QTimer::singleShot(0, &guarded.guard, &QuitGuard::quitWithoutQuestion);
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(guarded.window.findChildren<QMessageBox *>().size(), 0);
    EXPECT_FALSE(run.isRunning());
    EXPECT_TRUE(run.plainText().contains(u"\nDeleted sbx-"_s));
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
}

TEST_F(UnhurriedQuittingTest, EndsAtOnceWithoutAQuestionWhenNothingGoesOn)
{
    QTimer::singleShot(0, &guarded.guard, &QuitGuard::quitWithoutQuestion);
    EXPECT_TRUE(endsByItself());
}

TEST_F(UnhurriedQuittingTest, CancelsAnInstallAndWaitsForItWithoutAQuestion)
{
    tools().addTool(u"brew"_s, TestTools::untilTerminated(5));
    guarded.tools.setup.install();
    EXPECT_TRUE(waitUntil([this] { return tools().calls(u"brew"_s).size() == 1; }));
    QTimer::singleShot(0, &guarded.guard, &QuitGuard::quitWithoutQuestion);
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(guarded.tools.setup.note(), u"Install cancelled."_s);
}

TEST_F(QuittingTest, AbandonsWhatDoesNotEndInTimeWithoutAQuestion)
{
    startIgnoringRun();
    QTimer::singleShot(0, &guarded.guard, &QuitGuard::quitWithoutQuestion);
    EXPECT_FALSE(quit()) << "until then the application stays, and asks nothing";
    EXPECT_TRUE(endsByItself());
    EXPECT_TRUE(run.isRunning());
    EXPECT_EQ(history.entries().first().note, u"stopped"_s);
    EXPECT_TRUE(waitUntil([this] { return hasBegunToDelete(); }));
    tools().addFile(u"go"_s);
}

TEST_F(PatientQuittingTest, EndsInTimeWithoutAQuestionThoughTheMachineStaysAndAnOperationGoesOn)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    startContainer(u"go"_s);
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    QTimer::singleShot(0, &guarded.guard, &QuitGuard::quitWithoutQuestion);
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(guarded.question(), nullptr);
    tools().addFile(u"go"_s);
}

TEST_F(QuittingTest, QuitsWhenTheMachineIsDeleted)
{
    tools().addTool(u"orb"_s, tools().waitForFile(u"go"_s));
    guarded.tools.machines.remove(u"box"_s);
    EXPECT_FALSE(quit());
    press(u"Quit when it is done"_s);
    QTimer::singleShot(0, &guarded.window, [this] { tools().addFile(u"go"_s); });
    EXPECT_TRUE(endsByItself());
    EXPECT_FALSE(guarded.tools.machines.busy());
}

TEST_F(QuittingTest, ShowsAHiddenWindowForEachQuestionAboutAnOperation)
{
    tools().addTool(u"orb"_s, tools().waitForFile(u"go"_s));
    guarded.tools.machines.remove(u"box"_s);
    for (const QString &answer : {u"Quit when it is done"_s, u"Keep open"_s}) {
        guarded.window.hide();
        const EventCount raised(guarded.window, QEvent::ZOrderChange);
        EXPECT_FALSE(quit());
        EXPECT_TRUE(guarded.window.isVisible());
        EXPECT_GT(raised.count(), 0);
        press(answer);
    }
    tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([this] { return !guarded.tools.machines.busy(); }));
}

TEST_F(QuittingTest, CutsTheMiddleOutOfASentenceOfMoreThanTwoHundredCharacters)
{
    tools().addTool(u"docker"_s, tools().waitForFile(u"go"_s));
    const qsizetype around = u"A container of  is being started."_s.size();
    for (const qsizetype length : {200, 201}) {
        const QString image(length - around, u'n');
        guarded.tools.containers.runContainer(image, QString(), QString());
        const QString whole = u"A container of "_s + image + u" is being started."_s;
        EXPECT_FALSE(quit());
        ASSERT_NE(asked(length == 200 ? whole : whole.first(100) + u'…' + whole.last(100)), nullptr);
        press(u"Keep open"_s);
        tools().addFile(u"go"_s);
        EXPECT_TRUE(waitUntil([this] { return !guarded.tools.containers.busy(); }));
        QFile::remove(tools().path(u"go"_s));
    }
}
