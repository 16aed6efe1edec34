#include "TidewellApp/TidewellApp.h"

#include "Screens/TestWindow.h"
#include "Support/Waiting.h"
#include "TidewellApp/Files/ScriptFiles.h"
#include "TidewellApp/IgnoredSignals.h"
#include "TidewellApp/MainWindow.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QPlainTextEdit>
#include <QTimer>
#include <QUrl>

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <type_traits>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{

/// Stands in for the browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(u"https"_s, this, "open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(u"https"_s); }

    Q_INVOKABLE void open(const QUrl &address) { addresses.append(address); }

    QList<QUrl> addresses;
};

void (*handlerOf(int signal))(int)
{
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

} // namespace

TEST(TidewellApp, IgnoresTheSignalsOfABrokenPipeAndOfATooLargeFile)
{
    for (const int signal : {SIGPIPE, SIGXFSZ})
        std::signal(signal, SIG_DFL);
    const TestWindow tools;
    const TidewellApp application;
    for (const int signal : {SIGPIPE, SIGXFSZ})
        EXPECT_EQ(handlerOf(signal), SIG_IGN);
}

TEST(TidewellApp, TellsThatAFileMayNotGrowSoLargeAndGoesOn)
{
    std::signal(SIGXFSZ, SIG_DFL);
    const IgnoredSignals ignoredSignals;
    TestWindow tools;
    const TidewellApp application;
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit small = before;
    small.rlim_cur = 4096;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::optional<QString> failure =
        ScriptFiles::write(tools.orbStack.tools().path(u"script"_s), QString(100'000, u'x'));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    ASSERT_TRUE(failure.has_value());
    EXPECT_TRUE(failure->startsWith(u"It cannot be written: "_s)) << failure->toStdString();
}

TEST(TidewellApp, MakesItsFiveControllersInTheirOrder)
{
    const TestWindow tools;
    TidewellApp application;
    const auto &[setup, machines, run, history, containers] = application.controllers();
    const std::vector<const void *> places{&setup, &machines, &run, &history, &containers};
    // One is made after the other, and each lies behind the one before.
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end(), std::less<>()));
    static_assert(std::is_same_v<decltype(setup), SetupController &>);
    static_assert(std::is_same_v<decltype(machines), MachineStore &>);
    static_assert(std::is_same_v<decltype(run), RunController &>);
    static_assert(std::is_same_v<decltype(history), HistoryStore &>);
    static_assert(std::is_same_v<decltype(containers), ContainerStore &>);
}

TEST(TidewellApp, OpensTheSiteInTheBrowser)
{
    const TestWindow tools;
    const Browser browser;
    TidewellApp application;
    application.controllers().setup.openOrbStackSite();
    EXPECT_EQ(browser.addresses, QList<QUrl>{QUrl(u"https://orbstack.dev"_s)});
}

TEST(TidewellApp, EndsInItsOwnTimeOnATerminationSignal)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        std::signal(signal, SIG_DFL);
        const TestWindow tools;
        const TidewellApp application;
        QTimer watchdog;
        watchdog.setSingleShot(true);
        QObject::connect(&watchdog, &QTimer::timeout, [] { QCoreApplication::exit(1); });
        watchdog.start(watchdogTime);
        QTimer::singleShot(0, &watchdog, [signal] { std::raise(signal); });
        EXPECT_EQ(QApplication::exec(), 0) << signal;
    }
}

TEST(TidewellApp, LeavesATerminationSignalIgnoredThatWasSoAtTheStart)
{
    std::signal(SIGHUP, SIG_IGN);
    {
        const TestWindow tools;
        const TidewellApp application;
        EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
        EXPECT_NE(handlerOf(SIGTERM), SIG_DFL);
    }
    EXPECT_EQ(handlerOf(SIGTERM), SIG_DFL) << "as it was before";
    std::signal(SIGHUP, SIG_DFL);
}

TEST(AbruptExit, IsCalledOnceByTheProgramsExitUnlessItIsGone)
{
    EXPECT_EXIT(
        {
            {
                const AbruptExit gone([] { std::fputs("never\n", stderr); });
            }
            const AbruptExit handler([] { std::fputs("called\n", stderr); });
            std::exit(7);
        },
        testing::ExitedWithCode(7), "^called\n$");
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
    tools.orbStack.tools().addTool(u"orb"_s, tools.orbStack.tools().waitForFile(u"go"_s) + u"echo Running"_s);
    {
        TidewellApp application;
        application.window().show();
        EXPECT_TRUE(waitUntil([&] { return tools.orbStack.calls(FakeOrbStack::statusCall) == 1; }));
    }
    // The answer finds nobody; a second one, asked for by somebody else, shows that it has come by.
    EXPECT_TRUE(QFile(tools.orbStack.tools().path(u"go"_s)).open(QIODevice::WriteOnly));
    EXPECT_TRUE(waitFor(tools.setup.refresh()));
    EXPECT_TRUE(waitFor(tools.setup.refresh()));
    EXPECT_EQ(tools.orbStack.calls(FakeOrbStack::listCall), 0);
}

#include "TidewellAppTests.moc"
