#pragma once

// Catches every wish to quit (the menu, the window's closing, the end of the session) and asks Quitting about it.
//
// Closing the window is quitting, or, on macOS, only hides it (after it has left full screen): the run lives on, and
// the Dock icon brings it back.

#include "TidewellApp/Quitting/Quitting.h"

#include <QObject>

class QuitGuard : public QObject
{
    Q_OBJECT

public:
    enum class Closing { quits, hides };

    /// Guards the application's quitting and `window`'s closing; all must outlive it.
    QuitGuard(const Controllers &controllers, QWidget &window, OutputSaving &saving, Closing closing,
              Quitting::Times times = {});

    /// The habit of this platform: `hides` on macOS, else `quits`.
    static Closing platformClosing();

    /// Ends the application soon and without a question.
    void quitWithoutQuestion() { m_quitting.quitWithoutQuestion(); }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool leavesFullScreen(const QObject *watched, const QEvent &event);

    Quitting m_quitting;
    QWidget &m_window;
    const Closing m_closing;
    bool m_isQuitting = false;
    bool m_closesWhenNormal = false;
};
