#pragma once

// Runs one job at a time: finds `orb`, creates a disposable machine where asked, feeds the composed script to a shell
// in the machine, streams the output into the transcript, deletes the disposable machine and adds the run to the
// history. All on the main thread.
//
//   idle ──start──▶ creating (disposable) ──▶ running in ──▶ deleting (disposable) ──▶ history written ──▶ idle
//
// A stop only sets a flag and asks the tool that runs now to terminate; the run reports it when the step returns.
// Deletion and history are never skipped once a run began, not even when the application cannot wait for them
// (abandon). A disposable machine's name is written down from before it is made until it is deleted
// (DisposableMachines.h). Destroyed during a run, the controller leaves the tool to itself: the run ends there.

#include "HistoryStore/HistoryStore.h"
#include "OrbCLI/CurrentTool.h"
#include "OrbCLI/DisposableMachines.h"
#include "Transcript/Transcript.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QProperty>
#include <QString>
#include <qcorotask.h>

#include <cstdint>
#include <mutex>
#include <optional>

/// One request to run a script.
struct RunJob {
    QString script;
    /// What the history shows as the command.
    QString label;
    /// The machine's name, possibly empty; ignored for a disposable job.
    QString machine;
    /// The machine's distribution, or the one to create when disposable.
    QString distro;
    /// Create a fresh machine for this run and delete it afterwards.
    bool disposable = false;
    /// Absolute path of the Mac folder to work in.
    std::optional<QString> folder;
    /// Stop the script after 600 seconds.
    bool timeoutEnabled = true;
};

/// Seconds; tests shorten them.
struct RunTimeLimits {
    double creation = 900;
    double script = 600;
    double deletion = 120;
};

class RunController : public QObject
{
    Q_OBJECT

public:
    /// `written` is where the names of disposable machines are written down.
    explicit RunController(RunTimeLimits limits = {}, const TextStorage &storage = {}, DisposableMachines written = {},
                           QObject *parent = nullptr);

    /// The text being edited on the Run screen.
    QString script() const { return m_script; }
    void setScript(const QString &script) { m_script = script; }

    /// All output of all runs since it was last cleared, and the record of the last one. Screens read it; append and
    /// clearTranscript change it.
    const Transcript &transcript() const { return m_transcript; }
    /// Grows by one with every append.
    qint64 revision() const { return m_revision; }
    bool isRunning() const { return m_isRunning; }
    /// The moment the current run started; none while idle.
    std::optional<QDateTime> startedAt() const { return m_startedAt; }
    /// One line on the current step; empty while idle.
    QString phase() const { return m_phase; }
    /// The disposable machine that the last run could not delete; empty when there is none.
    QString undeletedMachine() const { return m_undeletedMachine; }

    /// The texts of all segments, joined as they are.
    QString plainText() const { return m_transcript.plainText(); }

    /// Adds text to the transcript; `revision` changes.
    void append(QUtf8StringView text, OutputKind kind);
    void append(const QString &text, OutputKind kind);

    /// How much of the current or last run's output could not be kept, and why, as a sentence; empty for nothing.
    QString outputLoss() const { return m_outputLoss; }

    /// Empties the transcript and the record.
    void clearTranscript();

    /// Starts the job and returns at once; ignored while a run is going. The run is added to `history` at its end; a
    /// history that was destroyed meanwhile, or none, is no failure.
    void start(const RunJob &job, HistoryStore *history);

    /// Starts the installation of packages, as the user typed them, in a machine; a text or a distribution that cannot
    /// be served is refused in the transcript.
    void installPackages(const QString &packages, const QString &machine, const QString &distro, bool timeoutEnabled,
                         HistoryStore *history);

    /// Stops the current run: its tool is asked to terminate, a disposable machine is still deleted.
    void stop();

    /// Stops the current run for an application that ends now: the tool is asked to terminate, the deletion of a
    /// disposable machine is begun, and the history gets the run: as stopped, if its script had not ended. Waits for
    /// nothing.
    void abandon();

    /// The shell script that installs validated package names; nothing for a distribution other than Ubuntu, Debian and
    /// Alpine.
    static std::optional<QString> packageScript(const QString &distro, const QStringList &packages);

    bool event(QEvent *event) override;

Q_SIGNALS:
    void scriptChanged();
    /// The transcript was cleared; every append is told by revisionChanged.
    void transcriptCleared();
    void revisionChanged();
    void isRunningChanged();
    void startedAtChanged();
    void phaseChanged();
    /// Or the transcript has lost its front.
    void outputLossChanged();

private:
    /// How a run ended, as the history keeps it.
    struct Outcome {
        std::optional<std::int64_t> exitCode;
        QString note;
    };
    /// What outlives the steps of the current run.
    struct Record {
        QPointer<HistoryStore> history;
        /// But for the duration; as stopped, until it is known how the run ended.
        HistoryEntry entry;
        QString orb;
        /// Empty when the machine is the user's own.
        QString disposableMachine;
    };

    QCoro::Task<> execute(RunJob job);
    QCoro::Task<bool> createMachine(QString orb, QString name, QString distro);
    QCoro::Task<Outcome> runScript(QString orb, QString machine, RunJob job);
    QCoro::Task<> deleteMachine(QString orb, QString name);
    void addToHistory();
    /// Appends what a tool prints, its standard output as this kind.
    OutputHandler outputHandler(OutputKind kindOfOutput);
    void postLoss();
    void takeLoss();

    const RunTimeLimits m_limits;
    const DisposableMachines m_written;
    /// None when idle, and once the run is in the history.
    std::optional<Record> m_record;
    QString m_undeletedMachine;
    std::mutex m_lossLock;
    Transcript m_transcript;
    CurrentTool m_currentTool;
    Q_OBJECT_BINDABLE_PROPERTY(RunController, QString, m_script, &RunController::scriptChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(RunController, qint64, m_revision, 0, &RunController::revisionChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(RunController, bool, m_isRunning, false, &RunController::isRunningChanged)
    Q_OBJECT_BINDABLE_PROPERTY(RunController, std::optional<QDateTime>, m_startedAt, &RunController::startedAtChanged)
    Q_OBJECT_BINDABLE_PROPERTY(RunController, QString, m_phase, &RunController::phaseChanged)
    Q_OBJECT_BINDABLE_PROPERTY(RunController, QString, m_outputLoss, &RunController::outputLossChanged)
};
