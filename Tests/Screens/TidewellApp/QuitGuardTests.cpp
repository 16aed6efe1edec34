#include "Screens/TestWindow.h"
#include "TidewellApp/MainWindow.h"
#include "TidewellApp/QuitGuard.h"
#include "TidewellApp/TidewellApp.h"

#include <QApplication>
#include <QFile>
#include <QMainWindow>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace
{

/// A window with a run controller over the fake tools, and the guard under test.
class Guarded
{
public:
    explicit Guarded(QuitGuard::Closing closing) : guard(tools.run, window, closing) { window.show(); }

    void startRun(const QString &script)
    {
        RunJob job;
        job.script = script;
        job.distro = u"debian"_s;
        job.disposable = true;
        tools.run.start(job, &tools.history);
        EXPECT_TRUE(waitUntil([this] { return tools.run.phase().startsWith(u"Running in "_s); }));
    }

    QMessageBox *question() const
    {
        for (QMessageBox *box : window.findChildren<QMessageBox *>()) {
            if (box->isVisible())
                return box;
        }
        return nullptr;
    }

    TestWindow tools;
    QMainWindow window;
    QuitGuard guard;
};

/// What the system sends when the user quits; true when nothing objects.
bool quit()
{
    QEvent event(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &event);
    return event.isAccepted();
}

/// Runs the application until it ends by itself; false when it had to be ended.
bool endsByItself()
{
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    watchdog.start(20s);
    return QApplication::exec() == 0;
}

} // namespace

TEST(QuitGuard, LetsAnIdleApplicationQuit)
{
    Guarded guarded(QuitGuard::Closing::quits);
    EXPECT_TRUE(quit());
    EXPECT_EQ(guarded.question(), nullptr);
}

TEST(QuitGuard, LetsAnIdleWindowCloseWhichIsQuitting)
{
    Guarded guarded(QuitGuard::Closing::quits);
    QTimer::singleShot(0, &guarded.window, &QWidget::close);
    EXPECT_TRUE(endsByItself());
}

TEST(QuitGuard, AsksOnceWhileARunIsGoing)
{
    Guarded guarded(QuitGuard::Closing::quits);
    guarded.startRun(u"exec sleep 60"_s);
    EXPECT_FALSE(quit());
    QMessageBox *question = guarded.question();
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(question->text(), u"A run is in progress."_s);
    EXPECT_EQ(question->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(ByName::isOffered(*question, u"Stop it and quit"_s));
    EXPECT_TRUE(ByName::isOffered(*question, u"Keep running"_s));
    EXPECT_FALSE(quit());
    EXPECT_FALSE(guarded.window.close());
    EXPECT_EQ(guarded.window.findChildren<QMessageBox *>().size(), 1);
    ByName::press(*question, u"Keep running"_s);
    EXPECT_EQ(guarded.question(), nullptr);
    EXPECT_TRUE(guarded.tools.run.isRunning());
    EXPECT_TRUE(guarded.window.isVisible());
    EXPECT_FALSE(quit());
    EXPECT_NE(guarded.question(), nullptr);
}

TEST(QuitGuard, StopsTheRunDeletesItsMachineWritesTheHistoryAndQuits)
{
    Guarded guarded(QuitGuard::Closing::quits);
    guarded.startRun(u"exec sleep 60"_s);
    EXPECT_FALSE(guarded.window.close());
    ASSERT_NE(guarded.question(), nullptr);
    ByName::press(*guarded.question(), u"Stop it and quit"_s);
    EXPECT_TRUE(endsByItself());
    EXPECT_FALSE(guarded.tools.run.isRunning());
    EXPECT_TRUE(guarded.tools.run.plainText().contains(u"\nDeleted sbx-"_s));
    ASSERT_EQ(guarded.tools.history.entries().size(), 1);
    EXPECT_EQ(guarded.tools.history.entries()[0].note, u"stopped"_s);
    const HistoryStore read(guarded.tools.orbStack.tools().path(u"support"_s));
    EXPECT_EQ(read.entries().size(), 1);
}

TEST(QuitGuard, AsksNoMoreOnceTheUserHasDecided)
{
    Guarded guarded(QuitGuard::Closing::quits);
    const QString go = guarded.tools.orbStack.tools().path(u"go"_s);
    guarded.startRun(u"trap '' TERM; echo up; while [ ! -e '%1' ]; do sleep 0.02; done"_s.arg(go));
    EXPECT_TRUE(waitUntil([&] { return guarded.tools.run.plainText().contains(u"\nup\n"_s); }));
    EXPECT_FALSE(quit());
    ASSERT_NE(guarded.question(), nullptr);
    ByName::press(*guarded.question(), u"Stop it and quit"_s);
    EXPECT_FALSE(quit()) << "the run takes its time";
    EXPECT_FALSE(guarded.window.close());
    EXPECT_EQ(guarded.question(), nullptr);
    EXPECT_TRUE(QFile(go).open(QIODevice::WriteOnly));
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(guarded.tools.history.entries()[0].note, u"stopped"_s);
}

TEST(QuitGuard, QuitsAfterARunThatWasStillMakingItsMachineOrAlreadyDeletingIt)
{
    for (const QString &step : {u"create"_s, u"delete"_s}) {
        Guarded guarded(QuitGuard::Closing::quits);
        TestTools &tools = guarded.tools.orbStack.tools();
        tools.addTool(u"orb"_s, u"if [ $1 = %1 ] && [ ! -e '%2' ]; then : > '%2'; sleep 0.3; fi"_s.arg(
                                    step, tools.path(u"reached"_s)));
        RunJob job;
        job.script = u"true"_s;
        job.distro = u"debian"_s;
        job.disposable = true;
        guarded.tools.run.start(job, &guarded.tools.history);
        EXPECT_TRUE(waitUntil([&] { return QFile::exists(tools.path(u"reached"_s)); }));
        EXPECT_FALSE(quit());
        ASSERT_NE(guarded.question(), nullptr);
        ByName::press(*guarded.question(), u"Stop it and quit"_s);
        EXPECT_TRUE(endsByItself());
        EXPECT_TRUE(guarded.tools.run.plainText().contains(u"\nDeleted sbx-"_s)) << step.toStdString();
        EXPECT_EQ(guarded.tools.history.entries().size(), 1);
        EXPECT_TRUE(tools.calls(u"orb"_s).last().startsWith(u"<delete><-f><sbx-"_s));
    }
}

TEST(QuitGuard, QuitsAtOnceWhenTheRunEndedWhileItAsked)
{
    Guarded guarded(QuitGuard::Closing::quits);
    const QString go = guarded.tools.orbStack.tools().path(u"go"_s);
    guarded.startRun(u"while [ ! -e '%1' ]; do sleep 0.02; done"_s.arg(go));
    EXPECT_FALSE(quit());
    EXPECT_TRUE(QFile(go).open(QIODevice::WriteOnly));
    EXPECT_TRUE(waitUntil([&] { return !guarded.tools.run.isRunning(); }));
    ASSERT_NE(guarded.question(), nullptr);
    ByName::press(*guarded.question(), u"Stop it and quit"_s);
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(guarded.tools.history.entries()[0].exitCode, 0);
}

TEST(QuitGuard, HidesTheWindowWhereClosingIsNotQuittingAndBringsItBack)
{
    Guarded guarded(QuitGuard::Closing::hides);
    guarded.startRun(u"exec sleep 60"_s);
    EXPECT_TRUE(guarded.window.close());
    EXPECT_FALSE(guarded.window.isVisible());
    EXPECT_TRUE(guarded.tools.run.isRunning());
    EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
    QEvent activation(QEvent::ApplicationActivate);
    QCoreApplication::sendEvent(qApp, &activation);
    EXPECT_TRUE(guarded.window.isVisible());
}

TEST(QuitGuard, ShowsAHiddenWindowToAskInIt)
{
    Guarded guarded(QuitGuard::Closing::hides);
    guarded.startRun(u"exec sleep 60"_s);
    guarded.window.close();
    EXPECT_FALSE(quit());
    EXPECT_TRUE(guarded.window.isVisible());
    ASSERT_NE(guarded.question(), nullptr);
    ByName::press(*guarded.question(), u"Stop it and quit"_s);
    EXPECT_TRUE(endsByItself());
}

TEST(TidewellApp, IgnoresTheBrokenPipeSignal)
{
    std::signal(SIGPIPE, SIG_DFL);
    const TestWindow tools;
    const TidewellApp application;
    EXPECT_EQ(std::signal(SIGPIPE, SIG_IGN), SIG_IGN);
}

TEST(TidewellApp, SharesItsFiveControllersWithTheWindow)
{
    const TestWindow tools;
    TidewellApp application;
    application.window().show();
    EXPECT_EQ(application.window().windowTitle(), u"Tidewell"_s);
    application.controllers().run.setScript(u"shared"_s);
    EXPECT_EQ(ByName::find<QPlainTextEdit>(application.window(), u"Script"_s)->toPlainText(), u"shared"_s);
    EXPECT_TRUE(waitUntil([&] { return application.controllers().setup.state() == OrbState::stopped; }));
}

TEST(TidewellApp, MayEndWhileAToolIsStillAnswering)
{
    TestWindow tools;
    tools.orbStack.tools().addTool(u"orb"_s, u"while [ ! -e '%1' ]; do sleep 0.02; done; echo Running"_s.arg(
                                                 tools.orbStack.tools().path(u"go"_s)));
    {
        TidewellApp application;
        application.window().show();
        EXPECT_TRUE(waitUntil([&] { return tools.orbStack.calls(u"<status>"_s) == 1; }));
    }
    // The answer finds nobody; a second one, asked for by somebody else, shows that it has come by.
    EXPECT_TRUE(QFile(tools.orbStack.tools().path(u"go"_s)).open(QIODevice::WriteOnly));
    EXPECT_TRUE(waitFor(tools.setup.refresh()));
    EXPECT_TRUE(waitFor(tools.setup.refresh()));
    EXPECT_EQ(tools.orbStack.calls(u"<list><-f><json>"_s), 0);
}

namespace
{

/// Notes at each hiding of a window whether it filled the screen.
class HideWatch : public QObject
{
public:
    explicit HideWatch(QWidget &window) { window.installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Hide)
            hidings.append(static_cast<QWidget *>(watched)->isFullScreen());
        return false;
    }

    QList<bool> hidings;
};

} // namespace

TEST(QuitGuard, LeavesFullScreenBeforeItHidesTheWindow)
{
    Guarded guarded(QuitGuard::Closing::hides);
    guarded.window.showFullScreen();
    ASSERT_TRUE(waitUntil([&] { return guarded.window.isFullScreen(); }));
    const HideWatch watch(guarded.window);
    guarded.window.close();
    EXPECT_TRUE(waitUntil([&] { return !watch.hidings.isEmpty(); }));
    EXPECT_FALSE(watch.hidings.contains(true));
}

TEST(QuitGuard, WaitsUntilTheSystemHasLeftFullScreen)
{
    Guarded guarded(QuitGuard::Closing::hides);
    guarded.window.showFullScreen();
    ASSERT_TRUE(waitUntil([&] { return guarded.window.isFullScreen(); }));
    guarded.window.close();
    // All that the application itself has still to do; the system's answer comes with the event loop.
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(guarded.window.isVisible());
    EXPECT_TRUE(waitUntil([&] { return !guarded.window.isVisible(); }));
}

TEST(QuitGuard, QuitsFromFullScreenAtOnce)
{
    Guarded guarded(QuitGuard::Closing::hides);
    guarded.window.showFullScreen();
    ASSERT_TRUE(waitUntil([&] { return guarded.window.isFullScreen(); }));
    EXPECT_TRUE(quit());
}
