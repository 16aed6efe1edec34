#pragma once

// What stands between the wish to quit and the end of the application, so that nothing is lost by a slip, nothing is
// cut off without the user's word, and no disposable machine is left behind unsaid.
//
//   nothing goes on:          ends
//   a run is going:           asks, once ──"Keep running", or it ends──▶ goes on
//      └──"Stop it and quit"──▶ RunController::stop ──ended, its machine gone──▶ ends
//            ├──its machine could not be deleted, or nobody knows in five seconds──▶ asks: "Quit anyway", "Keep open"
//            └──not ended in five seconds──▶ asks: "Quit anyway", "Keep open"; ends when the run does
//   an operation is going:    asks ──"Keep open", or it is done──▶ goes on; ends where "Stop it and quit" was said
//   before
//      └──"Quit when it is done"──done──▶ ends
//            └──the wish again──▶ asks: "Quit anyway", "Keep open"
//   output is being saved:    shows how far it has come ──saved────────────────▶ ends
//                                                    └──failed or cancelled──▶ goes on
//   the history is not saved: tries once more ──failed──▶ asks: "Quit anyway", "Keep open"
//   without a question:       stops what can be stopped ──all over, or ten seconds──▶ ends

#include "ContentView/Controllers.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <qcorotask.h>

#include <chrono>
#include <functional>

class OutputSaving;
class QMessageBox;
class QWidget;

class Quitting : public QObject
{
    Q_OBJECT

public:
    struct Times {
        /// From "Stop it and quit" until it is asked whether to go on waiting.
        std::chrono::milliseconds untilAskedAgain = std::chrono::seconds(5);
        /// The longest that quitting without a question takes.
        std::chrono::milliseconds untilTheEnd = std::chrono::seconds(10);
    };

    /// Asks over `window`. All must outlive it.
    Quitting(const Controllers &controllers, QWidget &window, OutputSaving &saving, Times times);

    /// Whether the application may end now. If not, the user is asked, unless that is so already, and the application
    /// quits by itself when the answer allows it.
    bool mayQuit();

    /// Whether there is something to ask about.
    bool wouldLoseSomething() const;

    /// Ends the application soon, whatever goes on. What has not ended by then is abandoned.
    void quitWithoutQuestion();

    void showWindow();

private:
    enum class Awaited { nothing, run, machineGone, operations, saving };

    bool isSomethingGoingOn() const;
    /// What goes on beside a run, as a sentence; empty when nothing does.
    QString operation() const;
    bool isHistorySaved();
    void askAboutRun();
    void askAboutOperation();
    void awaitSaving();
    void askWhetherToQuitAnyway(const QString &title, const QString &message, const std::function<void()> &accepted);
    void takeBack();
    void stopAndQuit();
    void quitWhenDone();
    /// The time for waiting is over.
    void losePatience();
    /// What the open question asks about has ended.
    bool isQuestionOutdated() const;
    /// What goes on has changed.
    void goOn();
    void endSaving(bool isSaved);
    QCoro::Task<> checkMachine();
    void askAboutMachine();
    void closeQuestion();
    void quit();
    void quitAnyway();

    const Controllers m_controllers;
    QWidget &m_window;
    OutputSaving &m_saving;
    const Times m_times;
    Awaited m_awaited = Awaited::nothing;
    /// What the last question asks about.
    Awaited m_askedAbout = Awaited::nothing;
    /// The user has answered that the application is to end, and has not taken it back.
    bool m_isMeant = false;
    bool m_asksNoMore = false;
    QTimer m_patience;
    /// Whose deletion is looked into.
    QString m_machine;
    /// The last question; it goes after it was closed.
    QPointer<QMessageBox> m_question;
};
