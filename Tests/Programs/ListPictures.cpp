#include "Programs/ListPictures.h"

#include "App/MainWindow.h"
#include "ContentView/ContentView.h"
#include "Programs/Photographer.h"
#include "Screens/TestWindow.h"

#include <QLineEdit>
#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace
{

const QString longName = u"a-name-that-goes-on-"_s.repeated(12);

// The window over an orb and a docker that are made of files, opened on one tab.
class ListWindow
{
public:
    explicit ListWindow(AppTab tab) : window(tools.controllers())
    {
        bin().addTool(u"orb"_s, u"cd '%1'; case $1 in status) cat state;; list) cat machines;; create) echo 'fetching '\
'the image'; while [ -e hold ]; do sleep 0.02; done; echo \"[-32098] create '$3': make rootfs: download rootfs: \
stream to file: unexpected EOF\" >&2; exit 1;; esac"_s.arg(bin().path(u"."_s)));
        bin().addTool(u"docker"_s, u"cd '%1'; case $1 in ps) cat containers;; logs) seq -f '2026-11-20T10:11:12Z \
request %g served in 3 ms, in words enough to make a line that does not fit the sheet' 300;; *) while [ -e hold ]; do \
sleep 0.02; done; cat answer >&2; exit 1;; esac"_s.arg(bin().path(u"."_s)));
        write(u"containers"_s, {});
        tools.orbStack.setRunning(true);
        showWindow(tools, window, [this] { return tools.setup.state() == OrbState::running; });
        content().setTab(tab);
    }

    ~ListWindow() { release(); }

    TestTools &bin() { return tools.orbStack.tools(); }
    ContentView &content() { return *window.findChild<ContentView *>(); }
    void hold() { write(u"hold"_s, {}); }
    void release() { QFile::remove(bin().path(u"hold"_s)); }

    void write(const QString &name, const QByteArray &text)
    {
        QFile file(bin().path(name));
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(text);
    }

    void fill()
    {
        tools.orbStack.setMachineList(
            u"[{\"name\":\"devbox\",\"state\":\"running\",\"image\":{\"distro\":\"ubuntu\",\"version\":\"noble\"}},\
{\"name\":\"build\",\"state\":\"stopped\",\"image\":{\"distro\":\"debian\",\"version\":\"12\"}},\
{\"name\":\"%1\",\"state\":\"running\",\"image\":{\"distro\":\"%1\"}},{\"name\":\"bare\",\"state\":\"stopped\"}]"_s
                .arg(longName)
                .toUtf8());
        QByteArray lines;
        for (int number = 0; number < 12; ++number)
            lines +=
                u"{\"ID\":\"%1\",\"Names\":\"%2\",\"Image\":\"nginx:latest\",\"State\":\"%3\",\"Status\":\"%4\",\"Ports\":\"%5\"}\n"_s
                    .arg(QString::number(number), number == 3 ? longName : u"web-%1"_s.arg(number),
                         number % 3 == 0 ? u"exited"_s : u"running"_s,
                         number % 3 == 0 ? u"Exited (137) 5 seconds ago"_s : u"Up 2 minutes (healthy)"_s,
                         number % 2 == 0 ? QString() : u"0.0.0.0:8080->80/tcp, [::]:8080->80/tcp"_s)
                    .toUtf8();
        write(u"containers"_s, lines);
        refresh();
    }

    void refresh()
    {
        waitFor(tools.setup.refresh());
        waitFor(tools.machines.refresh());
        waitFor(tools.containers.refresh());
    }

    void type(const QString &field, const QString &text) { ByName::find<QLineEdit>(window, field)->setText(text); }

    TestWindow tools;
    MainWindow window;
};

void machinesScreen(const Photographer &photographer)
{
    ListWindow list(AppTab::machines);
    photographer.take(list.window, u"machines-empty"_s);
    list.fill();
    photographer.take(list.window, u"machines-filled"_s);
    ByName::press(list.window, u"Delete"_s, u"Delete devbox"_s);
    photographer.take(list.window, u"machines-alert"_s);
    ByName::press(*list.window.findChild<QMessageBox *>(), u"Cancel"_s);
    list.hold();
    list.type(u"Name (e.g. scratch)"_s, u"scratch"_s);
    ByName::press(list.window, u"Create"_s);
    photographer.take(list.window, u"machines-busy"_s);
    list.release();
    waitUntil([&list] { return !list.tools.machines.busy(); });
    list.write(u"machines"_s, "Error: the virtual machine does not answer");
    list.bin().addTool(u"orb"_s, u"case $1 in status) echo Running;; *) echo 'cannot reach the virtual machine: \
connection refused' >&2; exit 1;; esac"_s);
    list.refresh();
    photographer.take(list.window, u"machines-error"_s);
    list.bin().addTool(u"orb"_s, u"echo Stopped"_s);
    list.refresh();
    photographer.take(list.window, u"machines-stopped"_s);
    list.bin().removeTool(u"orb"_s);
    list.refresh();
    photographer.take(list.window, u"machines-missing"_s);
}

void historyScreen(const Photographer &photographer)
{
    ListWindow list(AppTab::history);
    photographer.take(list.window, u"history-empty"_s);
    for (int number = 0; number < 20; ++number) {
        HistoryEntry entry;
        entry.id = QUuid::createUuid();
        entry.command = number == 16 ? longName : u"\napt-get update\nmake test"_s;
        entry.machine = number % 2 == 0 ? u"devbox"_s : u"disposable (ubuntu)"_s;
        if (number % 3 != 0)
            entry.exitCode = number % 2;
        else if (number > 3)
            entry.note = u"stopped"_s;
        entry.date = QDateTime::currentDateTime().addSecs(number * 7200);
        entry.duration = number * 1.37;
        list.tools.history.add(entry);
    }
    photographer.take(list.window, u"history-filled"_s);
}

void containersScreen(const Photographer &photographer)
{
    ListWindow list(AppTab::containers);
    list.refresh();
    photographer.take(list.window, u"containers-empty"_s);
    list.fill();
    photographer.take(list.window, u"containers-filled"_s);
    list.type(u"Image (nginx:latest)"_s, u"nginx:latest"_s);
    list.hold();
    ByName::press(list.window, u"Run"_s);
    photographer.take(list.window, u"containers-busy"_s);
    list.write(u"answer"_s,
               "docker: Error response from daemon: pull access denied for nginx, repository does not exist "
               "or may require 'docker login': denied: requested access to the resource is denied.\nSee "
               "'docker run --help'.\n");
    list.release();
    waitUntil([&list] { return !list.tools.containers.busy(); });
    photographer.take(list.window, u"containers-message"_s);
    ByName::press(list.window, u"Logs"_s, u"Logs web-1"_s);
    waitUntil([&list] { return list.tools.containers.showLogs(); });
    photographer.take(list.window, u"containers-log"_s);
    list.tools.containers.setShowLogs(false);
    list.bin().addTool(u"docker"_s, u"echo 'Cannot connect to the Docker daemon at \
unix:///Users/ann/.orbstack/run/docker.sock. Is the docker daemon running?' >&2; exit 1"_s);
    list.tools.orbStack.setRunning(false);
    list.refresh();
    photographer.take(list.window, u"containers-error-stopped"_s);
    list.bin().removeTool(u"docker"_s);
    list.refresh();
    photographer.take(list.window, u"containers-missing"_s);
}

} // namespace

void listScreens(const Photographer &photographer)
{
    machinesScreen(photographer);
    historyScreen(photographer);
    containersScreen(photographer);
}
