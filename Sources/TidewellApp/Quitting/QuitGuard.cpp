#include "TidewellApp/Quitting/QuitGuard.h"

#include <QApplication>
#include <QSessionManager>
#include <QWidget>
#include <QWindow>

QuitGuard::QuitGuard(const Controllers &controllers, QWidget &window, OutputSaving &saving, Closing closing,
                     Quitting::Times times)
    : m_quitting(controllers, window, saving, times),
      m_window(window),
      m_closing(closing)
{
    qApp->installEventFilter(this);
    QApplication::setQuitOnLastWindowClosed(closing == Closing::quits);
    connect(
        qApp, &QGuiApplication::commitDataRequest, this,
        [this](QSessionManager &manager) {
            if (!m_quitting.wouldLoseSomething() || !manager.allowsInteraction())
                return;
            // The end of the session is given up in favour of the question.
            manager.cancel();
            manager.release();
            m_quitting.mayQuit();
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
    if ((isQuitting || isClosing) && !m_quitting.mayQuit()) {
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
        m_quitting.showWindow();
    return false;
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
