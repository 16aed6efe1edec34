#include "TidewellApp/TidewellApp.h"

#include "TidewellApp/MainWindow.h"

#include <QDesktopServices>
#include <QSignalBlocker>
#include <QUrl>

TidewellApp::TidewellApp(QuitGuard::Closing closing)
    : m_machines({}, DisposableMachines(HistoryStore::applicationSupportFolder())),
      m_run({}, {}, DisposableMachines(HistoryStore::applicationSupportFolder())),
      m_window(std::make_unique<MainWindow>(controllers())),
      m_quitGuard(std::make_unique<QuitGuard>(controllers(), *m_window, m_window->saving(), closing)),
      m_abruptExit([this] {
          // No widget hears of it: what they draw with may be gone already.
          const QSignalBlocker blockers[]{QSignalBlocker(m_run), QSignalBlocker(m_history)};
          m_run.abandon();
      })
{
    QObject::connect(&m_terminationSignals, &TerminationSignals::received, m_quitGuard.get(),
                     &QuitGuard::quitWithoutQuestion);
    QObject::connect(&m_setup, &SetupController::siteRequested, m_window.get(),
                     [](const QString &address) { QDesktopServices::openUrl(QUrl(address)); });
}

TidewellApp::~TidewellApp() = default;

Controllers TidewellApp::controllers()
{
    return {m_setup, m_machines, m_run, m_history, m_containers};
}
