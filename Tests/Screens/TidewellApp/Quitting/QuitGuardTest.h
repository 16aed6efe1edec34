#pragma once

// What all tests of quitting share: a guarded window over fake tools, and the wish to quit.

#include "Screens/TestWindow.h"
#include "Support/Waiting.h"
#include "TidewellApp/Files/OutputSaving.h"
#include "TidewellApp/Quitting/QuitGuard.h"

#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QTimer>

/// A window with a run controller over the fake tools, and the guard under test.
class Guarded
{
public:
    explicit Guarded(QuitGuard::Closing closing, Quitting::Times times = {})
        : guard(tools.controllers(), window, saving, closing, times)
    {
        window.show();
    }

    void startRun(const QString &script)
    {
        RunJob job;
        job.script = script;
        job.distro = QStringLiteral("debian");
        job.disposable = true;
        tools.run.start(job, &tools.history);
        EXPECT_TRUE(waitUntil([this] { return tools.run.phase().startsWith(QStringLiteral("Running in ")); }));
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
    OutputSaving::Write write = OutputFile::write;
    OutputSaving saving{tools.run, window, [this](auto &&...all) { return write(all...); }};
    QuitGuard guard;
};

/// What the system sends when the user quits; true when nothing objects.
inline bool quit()
{
    QEvent event(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &event);
    return event.isAccepted();
}

/// Runs the application until it ends by itself; false when it had to be ended.
inline bool endsByItself()
{
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    watchdog.start(watchdogTime);
    return QApplication::exec() == 0;
}
