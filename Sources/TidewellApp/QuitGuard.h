#pragma once

// Stands between the user and the end of the application while a run is going: a run is not lost by a slip, and a
// disposable machine is not left behind.
//
//   nothing runs:     quit ──▶ the application ends
//   a run is going:   quit ──▶ asks, once ──"Keep running"──▶ goes on
//                                 └──"Stop it and quit"──▶ RunController::stop, the run ends in its own time
//                                                          (machine deleted, history written) ──▶ the application ends
//   it is stopping:   quit ──▶ nothing more; the end is near
//
// Closing the window is quitting, or, on macOS, only hides it (after it has left full screen): the run lives on, and
// the Dock icon brings it back.

#include <QObject>
#include <QPointer>

class QMessageBox;
class QWidget;
class RunController;

class QuitGuard : public QObject
{
    Q_OBJECT

public:
    enum class Closing { quits, hides };

    /// Guards the application's quitting and `window`'s closing; both references must outlive it.
    QuitGuard(RunController &run, QWidget &window, Closing closing);

    /// The habit of this platform: `hides` on macOS, else `quits`.
    static Closing platformClosing();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool mayQuit();
    void ask();
    void stopAndQuit();
    void runEnded();
    bool leavesFullScreen(const QObject *watched, const QEvent &event);
    void showWindow();

    RunController &m_run;
    QWidget &m_window;
    const Closing m_closing;
    bool m_quitsAfterRun = false;
    bool m_isQuitting = false;
    bool m_closesWhenNormal = false;
    /// The last question; it goes after it was closed.
    QPointer<QMessageBox> m_question;
};
