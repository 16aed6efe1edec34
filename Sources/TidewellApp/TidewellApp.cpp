#include "TidewellApp/TidewellApp.h"

#include "TidewellApp/MainWindow.h"

#include <QDesktopServices>
#include <QUrl>

#include <csignal>

IgnoredBrokenPipe::IgnoredBrokenPipe()
{
    // Writing a script to a child that has already exited must be a write error, not this program's end.
    std::signal(SIGPIPE, SIG_IGN);
}

TidewellApp::TidewellApp(QuitGuard::Closing closing)
    : m_window(std::make_unique<MainWindow>(controllers())),
      m_quitGuard(std::make_unique<QuitGuard>(m_run, *m_window, closing))
{
    QObject::connect(&m_setup, &SetupController::siteRequested, m_window.get(),
                     [](const QString &address) { QDesktopServices::openUrl(QUrl(address)); });
}

TidewellApp::~TidewellApp() = default;

Controllers TidewellApp::controllers()
{
    return {m_setup, m_machines, m_run, m_history, m_containers};
}
