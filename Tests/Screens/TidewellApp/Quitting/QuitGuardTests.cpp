#include "QuitGuardTest.h"
#include "Screens/EventCount.h"

#include <QFile>
#include <QSessionManager>

using namespace Qt::StringLiterals;

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
    guarded.startRun(u"exec sleep 600"_s);
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
    guarded.startRun(u"exec sleep 600"_s);
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
        tools.addTool(u"orb"_s, u"if [ $1 = %1 ] && [ ! -e '%2' ]; then\n%3%4fi"_s.arg(step, tools.path(u"reached"_s),
                                                                                       tools.tellByFile(u"reached"_s),
                                                                                       tools.waitForFile(u"go"_s)));
        RunJob job;
        job.script = u"true"_s;
        job.distro = u"debian"_s;
        job.disposable = true;
        guarded.tools.run.start(job, &guarded.tools.history);
        EXPECT_TRUE(waitUntil([&] { return tools.hasFile(u"reached"_s); }));
        EXPECT_FALSE(quit());
        ASSERT_NE(guarded.question(), nullptr);
        ByName::press(*guarded.question(), u"Stop it and quit"_s);
        tools.addFile(u"go"_s);
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
    guarded.startRun(u"exec sleep 600"_s);
    EXPECT_TRUE(guarded.window.close());
    EXPECT_FALSE(guarded.window.isVisible());
    EXPECT_TRUE(guarded.tools.run.isRunning());
    EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
    const EventCount raised(guarded.window, QEvent::ZOrderChange);
    QEvent activation(QEvent::ApplicationActivate);
    QCoreApplication::sendEvent(qApp, &activation);
    EXPECT_TRUE(guarded.window.isVisible());
    EXPECT_GT(raised.count(), 0);
    QCoreApplication::sendEvent(qApp, &activation);
    EXPECT_EQ(raised.count(), 1) << "what is shown needs nothing";
}

TEST(QuitGuard, LeavesAHiddenWindowHiddenWhereClosingIsQuitting)
{
    Guarded guarded(QuitGuard::Closing::quits);
    guarded.window.hide();
    QEvent activation(QEvent::ApplicationActivate);
    QCoreApplication::sendEvent(qApp, &activation);
    EXPECT_FALSE(guarded.window.isVisible());
}

TEST(QuitGuard, LetsAnyOtherWindowCloseWhileARunIsGoing)
{
    Guarded guarded(QuitGuard::Closing::quits);
    guarded.startRun(u"exec sleep 600"_s);
    QWidget other;
    other.show();
    EXPECT_TRUE(other.close());
    EXPECT_EQ(guarded.question(), nullptr);
}

TEST(QuitGuard, AsksNothingAtTheEndOfASessionThatWaitsForNoAnswer)
{
    Guarded guarded(QuitGuard::Closing::quits);
    auto *session = qApp->findChild<QSessionManager *>();
    if (session == nullptr || session->allowsInteraction())
        GTEST_SKIP() << "there is no such session here";
    for (const bool isRunning : {false, true}) {
        if (isRunning)
            guarded.startRun(u"exec sleep 600"_s);
        Q_EMIT qApp->commitDataRequest(*session);
        EXPECT_EQ(guarded.question(), nullptr);
    }
}

TEST(QuitGuard, ShowsAHiddenWindowToAskInIt)
{
    Guarded guarded(QuitGuard::Closing::hides);
    guarded.startRun(u"exec sleep 600"_s);
    guarded.window.close();
    EXPECT_FALSE(quit());
    EXPECT_TRUE(guarded.window.isVisible());
    ASSERT_NE(guarded.question(), nullptr);
    ByName::press(*guarded.question(), u"Stop it and quit"_s);
    EXPECT_TRUE(endsByItself());
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

TEST(QuitGuard, ClosesFromFullScreenAtOnceWhereClosingIsQuitting)
{
    Guarded guarded(QuitGuard::Closing::quits);
    guarded.window.showFullScreen();
    ASSERT_TRUE(waitUntil([&] { return guarded.window.isFullScreen(); }));
    EXPECT_TRUE(guarded.window.close());
    EXPECT_FALSE(guarded.window.isVisible());
}

TEST(QuitGuard, LeavesFullScreenAlsoAfterAQuittingThatDidNotEndTheApplication)
{
    Guarded guarded(QuitGuard::Closing::hides);
    EXPECT_TRUE(quit());
    QCoreApplication::processEvents();
    guarded.window.showFullScreen();
    ASSERT_TRUE(waitUntil([&] { return guarded.window.isFullScreen(); }));
    EXPECT_FALSE(guarded.window.close());
    EXPECT_TRUE(waitUntil([&] { return !guarded.window.isVisible(); }));
}
