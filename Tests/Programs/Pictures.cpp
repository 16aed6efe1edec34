// Pictures FOLDER: brings the real window into each of its states over fake tools and leaves a picture of each, light
// and dark, small and large. For people to look at; it judges nothing.

#include "App/MainWindow.h"
#include "ContentView/ContentView.h"
#include "Programs/ListPictures.h"
#include "Programs/Photographer.h"
#include "Screens/TestWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>

#include <csignal>

using namespace Qt::StringLiterals;

namespace
{

void header(const Photographer &photographer)
{
    {
        TestWindow tools;
        tools.orbStack.tools().addTool(u"orb"_s, u"exec sleep 20"_s);
        MainWindow window(tools.controllers());
        window.show();
        photographer.take(window, u"header-checking"_s);
    }
    for (const bool hasBrew : {false, true}) {
        TestWindow tools;
        TestTools &bin = tools.orbStack.tools();
        bin.removeTool(u"orb"_s);
        if (hasBrew)
            bin.addTool(u"brew"_s, u"echo '==> Downloading https://example.org/OrbStack.dmg'; echo '######## 43.1%'; "
                                   "echo '==> Installing Cask orbstack'; seq 12; exec sleep 60"_s);
        MainWindow window(tools.controllers());
        showWindow(tools, window, [&] { return tools.setup.state() == OrbState::notInstalled; });
        photographer.take(window, hasBrew ? u"header-not-installed"_s : u"header-no-homebrew"_s);
        if (hasBrew) {
            ByName::press(window, u"Install OrbStack"_s);
            waitUntil([&] { return tools.setup.log().endsWith(u"12\n"_s); });
            photographer.take(window, u"header-installing"_s);
        }
    }
    {
        TestWindow tools;
        tools.orbStack.tools().addTool(u"orb"_s,
                                       u"[ $1 = start ] && echo 'preparing' && exec sleep 60; echo Stopped"_s);
        MainWindow window(tools.controllers());
        showWindow(tools, window, [&] { return tools.setup.state() == OrbState::stopped; });
        photographer.take(window, u"header-stopped"_s);
        ByName::press(window, u"Start"_s, u"Start OrbStack"_s);
        photographer.take(window, u"header-starting"_s);
    }
    {
        TestWindow tools(false);
        MainWindow window(tools.controllers());
        showWindow(tools, window, [&] { return tools.setup.state() == OrbState::stopped; });
        photographer.take(window, u"header-old-system"_s);
    }
    {
        TestWindow tools;
        tools.orbStack.tools().addTool(
            u"orb"_s,
            u"case $1 in status) echo Running;; stop) seq 4000 | tr '\\n' ' '; exit 1;; list) echo '[]';; esac"_s);
        MainWindow window(tools.controllers());
        showWindow(tools, window, [&] { return tools.setup.state() == OrbState::running; });
        ByName::press(window, u"Stop"_s, u"Stop OrbStack"_s);
        waitUntil([&] { return !tools.setup.busy(); });
        photographer.take(window, u"header-long-failure"_s);
    }
}

void runScreen(const Photographer &photographer)
{
    TestWindow tools;
    tools.orbStack.setRunning(true);
    tools.orbStack.setMachines({u"devbox"_s, u"build"_s});
    MainWindow window(tools.controllers());
    showWindow(tools, window, [&] { return tools.machines.machines().size() == 2; });
    photographer.take(window, u"run-idle"_s);

    tools.run.setScript(u"set -e\necho \"hello from $(uname -s)\"\nls /nonexistent || true\nfor n in 1 2 3; do\n  echo "
                        "line $n\ndone\n"_s);
    ByName::press(window, u"Run"_s);
    waitUntil([&] { return !tools.run.isRunning(); });
    tools.run.append(u"\nTimed out after 10 minutes and was stopped.\n"_s, OutputKind::warn);
    tools.run.append(u"\nexit status 3 · 0.4s\n"_s, OutputKind::fail);
    photographer.take(window, u"run-finished"_s);

    tools.run.setScript(u"echo working; exec sleep 60"_s);
    ByName::press(window, u"Run"_s);
    QTest::qWait(1100);
    photographer.take(window, u"run-running"_s);
    tools.run.stop();
    waitUntil([&] { return !tools.run.isRunning(); });

    ByName::find<QCheckBox>(window, u"Disposable mode"_s)->click();
    QTest::qWait(50);
    photographer.take(window, u"run-disposable-alert"_s);
    ByName::press(*window.findChild<QMessageBox *>(), u"Turn on"_s);
    photographer.take(window, u"run-disposable"_s);

    ByName::press(window, u"Share a folder…"_s);
    auto *dialog = window.findChild<QFileDialog *>();
    Q_EMIT dialog->fileSelected(u"/Users/ann/Projects/tidewell/experiments/with a rather long name"_s);
    dialog->reject();
    QTest::qWait(50);
    photographer.take(window, u"run-disposable-folder"_s);
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    std::signal(SIGPIPE, SIG_IGN);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argumentCount, arguments);
    QApplication::setApplicationName(u"TidewellPictures"_s);
    QApplication::setOrganizationName(u"Tidewell"_s);
    const Photographer photographer(QString::fromLocal8Bit(argumentCount > 1 ? arguments[1] : "pictures"));
    header(photographer);
    runScreen(photographer);
    listScreens(photographer);
    return 0;
}
