#include "TidewellApp/Quitting/Quitting.h"

#include "ContainerStore/ContainerStore.h"
#include "HistoryStore/HistoryStore.h"
#include "Look/Alert.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "SetupController/SetupController.h"
#include "Text/VisibleText.h"
#include "TidewellApp/Files/OutputSaving.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QWidget>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype longestSentence = 200;

} // namespace

Quitting::Quitting(const Controllers &controllers, QWidget &window, OutputSaving &saving, Times times)
    : m_controllers(controllers),
      m_window(window),
      m_saving(saving),
      m_times(times)
{
    m_patience.setSingleShot(true);
    m_patience.setTimerType(Qt::PreciseTimer);
    connect(&m_patience, &QTimer::timeout, this, &Quitting::losePatience);
    // Queued: what has ended has still to return from its last step.
    connect(&controllers.run, &RunController::isRunningChanged, this, &Quitting::goOn, Qt::QueuedConnection);
    connect(&controllers.setup, &SetupController::busyChanged, this, &Quitting::goOn, Qt::QueuedConnection);
    connect(&controllers.machines, &MachineStore::busyChanged, this, &Quitting::goOn, Qt::QueuedConnection);
    connect(&controllers.containers, &ContainerStore::busyChanged, this, &Quitting::goOn, Qt::QueuedConnection);
    connect(&saving, &OutputSaving::ended, this, &Quitting::endSaving, Qt::QueuedConnection);
}

QString Quitting::operation() const
{
    if (m_controllers.setup.busy())
        return m_controllers.setup.operation();
    if (m_controllers.machines.busy())
        return m_controllers.machines.operation();
    return m_controllers.containers.busy() ? m_controllers.containers.operation() : QString();
}

bool Quitting::isSomethingGoingOn() const
{
    return m_controllers.run.isRunning() || !operation().isEmpty() || m_saving.isSaving();
}

bool Quitting::wouldLoseSomething() const
{
    return isSomethingGoingOn() || m_controllers.history.saveError();
}

bool Quitting::mayQuit()
{
    // Whether it must be told that a machine stays is known in a moment.
    const bool hasRunEnded = m_awaited == Awaited::run && !m_controllers.run.isRunning();
    if ((hasRunEnded || m_awaited == Awaited::machineGone) && !m_asksNoMore)
        return false;
    if (!isSomethingGoingOn())
        return m_asksNoMore || isHistorySaved();
    if (m_asksNoMore || (m_question && m_question->isVisible()))
        return false;
    if (m_controllers.run.isRunning())
        askAboutRun();
    else if (!operation().isEmpty())
        askAboutOperation();
    else
        awaitSaving();
    return false;
}

/// Tries once more; asks where that fails again, for what is in memory alone ends with it.
bool Quitting::isHistorySaved()
{
    HistoryStore &history = m_controllers.history;
    if (history.saveError())
        history.save();
    const std::optional<QString> reason = history.saveError();
    if (!reason)
        return true;
    if (!m_question || !m_question->isVisible())
        askWhetherToQuitAnyway(u"The history could not be saved."_s,
                               VisibleText::oneLine(VisibleText::elidedMiddle(*reason, longestSentence)) +
                                   u". Quitting now leaves its file as it is."_s,
                               [this] { quitAnyway(); });
    return false;
}

void Quitting::askAboutRun()
{
    // Who has said "Stop it and quit" only waits for the run to end.
    if (m_awaited == Awaited::run)
        return;
    // An earlier answer holds no more.
    m_awaited = Awaited::nothing;
    m_isMeant = false;
    m_askedAbout = Awaited::run;
    showWindow();
    m_question = Alert::open(
        &m_window, u"A run is in progress."_s, {}, u"Stop it and quit"_s, u"Keep running"_s, [this] { stopAndQuit(); },
        Alert::Kind::destructive);
}

void Quitting::askAboutOperation()
{
    const QString title = VisibleText::oneLine(VisibleText::elidedMiddle(operation(), longestSentence));
    if (m_awaited == Awaited::operations)
        return askWhetherToQuitAnyway(title, u"Tidewell quits when it is done. Quitting now cuts it off."_s,
                                      [this] { quitAnyway(); });
    m_awaited = Awaited::nothing;
    m_askedAbout = Awaited::operations;
    showWindow();
    m_question = Alert::open(&m_window, title, u"Quitting now cuts it off."_s, u"Quit when it is done"_s,
                             u"Keep open"_s, [this] { quitWhenDone(); });
    connect(m_question, &QMessageBox::finished, this, [this] { m_isMeant = m_awaited == Awaited::operations; });
}

/// Without a question: how far it has come tells why the application is still there, and can be cancelled.
void Quitting::awaitSaving()
{
    m_awaited = Awaited::saving;
    m_saving.showProgress();
}

void Quitting::askWhetherToQuitAnyway(const QString &title, const QString &message,
                                      const std::function<void()> &accepted)
{
    m_askedAbout = Awaited::nothing;
    showWindow();
    m_question =
        Alert::open(&m_window, title, message, u"Quit anyway"_s, u"Keep open"_s, accepted, Alert::Kind::destructive);
    connect(m_question, &QMessageBox::finished, this, &Quitting::takeBack);
}

/// The application stays open.
void Quitting::takeBack()
{
    m_awaited = Awaited::nothing;
    m_isMeant = false;
}

void Quitting::stopAndQuit()
{
    if (m_asksNoMore)
        return;
    m_awaited = Awaited::run;
    m_isMeant = true;
    m_patience.start(m_times.untilAskedAgain);
    m_controllers.run.stop();
    goOn();
}

void Quitting::quitWhenDone()
{
    if (m_asksNoMore)
        return;
    m_awaited = Awaited::operations;
    goOn();
}

void Quitting::quitWithoutQuestion()
{
    if (std::exchange(m_asksNoMore, true))
        return;
    m_patience.start(m_times.untilTheEnd);
    m_controllers.run.stop();
    m_controllers.setup.cancel();
    m_saving.cancel();
    goOn();
}

void Quitting::losePatience()
{
    if (m_asksNoMore)
        quitAnyway();
    else if (m_awaited == Awaited::machineGone)
        askAboutMachine();
    else if (m_awaited == Awaited::run && m_controllers.run.isRunning())
        askWhetherToQuitAnyway(
            u"The run has not ended yet."_s,
            u"Quitting now leaves it to itself. A disposable machine that stays behind is named in the Machines tab "
            "after the next start."_s,
            [this] { quitAnyway(); });
}

bool Quitting::isQuestionOutdated() const
{
    const bool isOver = (m_askedAbout == Awaited::run && !m_controllers.run.isRunning()) ||
                        (m_askedAbout == Awaited::operations && operation().isEmpty());
    return isOver && m_question && m_question->isVisible();
}

void Quitting::goOn()
{
    if (m_asksNoMore) {
        if (!isSomethingGoingOn())
            QCoreApplication::exit();
    } else if (isQuestionOutdated()) {
        closeQuestion();
        if (m_isMeant)
            quit();
    } else if (m_awaited == Awaited::run && !m_controllers.run.isRunning()) {
        checkMachine();
    } else if (m_awaited == Awaited::operations && operation().isEmpty()) {
        quit();
    }
}

void Quitting::endSaving(bool isSaved)
{
    // Whatever else is waited for: who wanted the output may want it still.
    if (!isSaved)
        takeBack();
    else if (m_awaited == Awaited::saving)
        quit();
    goOn();
}

/// A machine that could not be deleted is told, unless it was never made.
QCoro::Task<> Quitting::checkMachine()
{
    const QString name = m_controllers.run.undeletedMachine();
    if (name.isEmpty())
        co_return quit();
    // That the run has not ended is true no more; the list is given as long again.
    closeQuestion();
    m_patience.start(m_times.untilAskedAgain);
    m_awaited = Awaited::machineGone;
    m_machine = name;
    const QPointer<Quitting> self(this);
    const QPointer<MachineStore> machines(&m_controllers.machines);
    co_await machines->refresh();
    if (!self || !machines || m_asksNoMore || m_awaited != Awaited::machineGone || m_machine != name)
        co_return;
    const QList<Machine> &listed = machines->machines();
    const auto hasThisName = [&name](const Machine &machine) { return machine.name == name; };
    if (!machines->error() && std::none_of(listed.cbegin(), listed.cend(), hasThisName))
        co_return quit();
    askAboutMachine();
}

void Quitting::askAboutMachine()
{
    m_patience.stop();
    m_awaited = Awaited::nothing;
    // The end of a question takes the wish back, and comes behind the answer.
    const auto quitSoon = [this] {
        m_isMeant = true;
        quit();
    };
    askWhetherToQuitAnyway(m_machine + u" could not be deleted."_s,
                           u"The output tells why. As long as it is there, the Machines tab lists it and deletes it."_s,
                           [this, quitSoon] { QMetaObject::invokeMethod(this, quitSoon, Qt::QueuedConnection); });
}

/// The question is of no use any more; what the user has answered before still holds.
void Quitting::closeQuestion()
{
    const bool isMeant = m_isMeant;
    if (m_question)
        m_question->close();
    m_isMeant = isMeant;
}

void Quitting::quit()
{
    if (m_asksNoMore)
        return;
    m_patience.stop();
    m_awaited = Awaited::nothing;
    closeQuestion();
    // Anew, for something else may have begun.
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

void Quitting::quitAnyway()
{
    m_controllers.run.abandon();
    QCoreApplication::exit();
}

void Quitting::showWindow()
{
    m_window.setWindowState(m_window.windowState() & ~Qt::WindowMinimized);
    m_window.show();
    m_window.raise();
    m_window.activateWindow();
}
