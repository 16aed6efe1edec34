#include "TidewellApp/QuitGuard.h"

#include "Look/Alert.h"
#include "RunController/RunController.h"

#include <QApplication>
#include <QMessageBox>
#include <QSessionManager>
#include <QWindow>

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
    const bool isQuitting = watched == qApp && event->type() == QEvent::Quit;
    if (m_closing == Closing::hides && !m_isQuitting && leavesFullScreen(watched, *event)) {
        event->ignore();
        return true;
    }
    const bool isClosing = watched == &m_window && event->type() == QEvent::Close && m_closing == Closing::quits;
    if ((isQuitting || isClosing) && !mayQuit()) {
        event->ignore();
        return true;
    }
    if (isQuitting) {
        // Now the windows are asked to close, and one that does not would call the quitting off.
        m_isQuitting = true;
        QMetaObject::invokeMethod(this, [this] { m_isQuitting = false; }, Qt::QueuedConnection);
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

/// Hiding a full-screen window leaves a black space on macOS: it leaves full screen first, and is closed once the
/// system has reported that, which takes as long as the animation does.
bool QuitGuard::leavesFullScreen(const QObject *watched, const QEvent &event)
{
    if (watched == &m_window && event.type() == QEvent::Close) {
        m_closesWhenNormal = m_window.isFullScreen();
        if (m_closesWhenNormal)
            m_window.showNormal();
        return m_closesWhenNormal;
    }
    // The widget's own event comes at once; the report goes to its handle.
    const QWindow *handle = m_window.windowHandle();
    const bool isReport = watched == handle && event.type() == QEvent::WindowStateChange && event.spontaneous();
    if (m_closesWhenNormal && isReport && !handle->windowStates().testFlag(Qt::WindowFullScreen)) {
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
