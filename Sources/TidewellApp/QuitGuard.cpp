#include "TidewellApp/QuitGuard.h"

#include "Look/Alert.h"
#include "RunController/RunController.h"

#include <QApplication>
#include <QMessageBox>
#include <QSessionManager>

using namespace Qt::StringLiterals;

QuitGuard::QuitGuard(RunController &run, QWidget &window, Closing closing)
    : m_run(run),
      m_window(window),
      m_closing(closing)
{
    qApp->installEventFilter(this);
    QApplication::setQuitOnLastWindowClosed(closing == Closing::quits);
    connect(&run, &RunController::isRunningChanged, this, &QuitGuard::runEnded);
    connect(
        qApp, &QGuiApplication::commitDataRequest, this,
        [this](QSessionManager &manager) {
            if (!m_run.isRunning() || !manager.allowsInteraction())
                return;
            // The end of the session is given up in favour of the question.
            manager.cancel();
            manager.release();
            mayQuit();
        },
        Qt::DirectConnection);
}

QuitGuard::Closing QuitGuard::platformClosing()
{
#ifdef Q_OS_MACOS
    return Closing::hides;
#else
    return Closing::quits;
#endif
}

bool QuitGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_window && m_closing == Closing::hides && leavesFullScreen(*event)) {
        event->ignore();
        return true;
    }
    const bool isQuitting = watched == qApp && event->type() == QEvent::Quit;
    const bool isClosing = watched == &m_window && event->type() == QEvent::Close && m_closing == Closing::quits;
    if ((isQuitting || isClosing) && !mayQuit()) {
        event->ignore();
        return true;
    }
    const bool isActivated = watched == qApp && event->type() == QEvent::ApplicationActivate;
    if (isActivated && m_closing == Closing::hides && !m_window.isVisible())
        showWindow();
    return false;
}

bool QuitGuard::mayQuit()
{
    if (!m_run.isRunning())
        return true;
    // Asked once: who has said "Stop it and quit" only waits for the run to end.
    if (!m_quitsAfterRun && (!m_question || !m_question->isVisible()))
        ask();
    return false;
}

void QuitGuard::ask()
{
    showWindow();
    m_question = Alert::open(&m_window, u"A run is in progress."_s, {}, u"Stop it and quit"_s, u"Keep running"_s,
                             [this] { stopAndQuit(); });
}

void QuitGuard::stopAndQuit()
{
    m_quitsAfterRun = true;
    if (m_run.isRunning())
        m_run.stop();
    else
        runEnded();
}

void QuitGuard::runEnded()
{
    // Queued: the run has still to return from its last step.
    if (m_quitsAfterRun && !m_run.isRunning())
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

/// Hiding a full-screen window leaves a black space on macOS: it leaves full screen first and is closed after that.
bool QuitGuard::leavesFullScreen(const QEvent &event)
{
    if (event.type() == QEvent::Close && m_window.isFullScreen()) {
        m_closesWhenNormal = true;
        m_window.showNormal();
        return true;
    }
    if (event.type() == QEvent::WindowStateChange && m_closesWhenNormal && !m_window.isFullScreen()) {
        m_closesWhenNormal = false;
        QMetaObject::invokeMethod(&m_window, &QWidget::close, Qt::QueuedConnection);
    }
    return false;
}

void QuitGuard::showWindow()
{
    m_window.show();
    m_window.raise();
    m_window.activateWindow();
}
