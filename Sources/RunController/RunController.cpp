#include "RunController/RunController.h"

#include "OrbCLI/DeleteMachine.h"
#include "OrbCLI/OrbCLI.h"
#include "OrbCLI/ToolLocation.h"
#include "RunController/ScriptComposition.h"
#include "Text/Duration.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

using namespace Qt::StringLiterals;

namespace
{

QString disposableName()
{
    return u"sbx-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces).left(6).toLower();
}

double secondsSince(const QDateTime &moment)
{
    return Duration::between(moment, QDateTime::currentDateTimeUtc());
}

} // namespace

RunController::RunController(RunTimeLimits limits, const TextStorage &storage, DisposableMachines written,
                             QObject *parent)
    : QObject(parent),
      m_limits(limits),
      m_written(std::move(written)),
      m_transcript(storage, [this] { postLoss(); })
{
}

void RunController::append(QUtf8StringView text, OutputKind kind)
{
    m_transcript.append(text, kind);
    m_revision = m_revision + 1;
}

void RunController::append(const QString &text, OutputKind kind)
{
    append(QUtf8StringView(text.toUtf8()), kind);
}

void RunController::clearTranscript()
{
    m_transcript.clear();
    takeLoss();
    Q_EMIT transcriptCleared();
}

void RunController::start(const RunJob &job, HistoryStore *history)
{
    if (m_isRunning)
        return;
    const std::optional<QString> orb = OrbCLI::find(u"orb"_s);
    if (!orb) {
        append(u"orb was not found. Install OrbStack first.\n"_s, OutputKind::fail);
        return;
    }
    const QString disposable = job.disposable ? disposableName() : QString();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    m_record = Record{.history = history,
                      .entry = {.id = QUuid::createUuid(),
                                .command = job.label,
                                .machine = job.disposable ? u"disposable ("_s + job.distro + u')' : job.machine,
                                .exitCode = std::nullopt,
                                .note = u"stopped"_s,
                                .date = now,
                                .duration = 0},
                      .orb = *orb,
                      .disposableMachine = disposable};
    m_undeletedMachine.clear();
    m_isRunning = true;
    m_transcript.beginRecord();
    takeLoss();
    m_currentTool.beginOperation();
    m_startedAt = now;
    execute(job);
}

void RunController::stop()
{
    m_currentTool.requestStop();
}

void RunController::abandon()
{
    if (!m_record)
        return;
    m_currentTool.requestStop();
    if (!m_record->disposableMachine.isEmpty())
        OrbCLI::beginDeletion(m_record->orb, m_record->disposableMachine);
    addToHistory();
}

void RunController::addToHistory()
{
    std::optional<Record> record = std::exchange(m_record, std::nullopt);
    if (!record || !record->history)
        return;
    record->entry.duration = secondsSince(record->entry.date);
    record->history->add(record->entry);
}

OutputHandler RunController::outputHandler(OutputKind kindOfOutput)
{
    return [self = QPointer(this), kindOfOutput](QUtf8StringView text, bool isError) {
        if (self)
            self->append(text, isError ? OutputKind::err : kindOfOutput);
    };
}

/// Output could not be kept: the main thread is to hear of it. Any thread.
void RunController::postLoss()
{
    const std::lock_guard guard(m_lossLock);
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

bool RunController::event(QEvent *event)
{
    bool isLoss = false;
    {
        // Orders the making of the event before its use for a thread checker, too, which does not see Qt's own locks.
        const std::lock_guard guard(m_lossLock);
        isLoss = event->type() == QEvent::User;
    }
    if (!isLoss)
        return QObject::event(event);
    takeLoss();
    return true;
}

void RunController::takeLoss()
{
    const Transcript::Position begin = m_transcript.record().begin();
    m_transcript.dropLost();
    const QString loss = m_transcript.loss();
    // A little more of much is the same sentence, but another front.
    if (loss == m_outputLoss && begin != m_transcript.record().begin())
        Q_EMIT outputLossChanged();
    m_outputLoss = loss;
}

QCoro::Task<> RunController::execute(RunJob job)
{
    // Nothing of this object is touched after a wait that it did not survive.
    const QPointer<RunController> self(this);
    const QString orb = m_record->orb;
    const QString machine = job.disposable ? m_record->disposableMachine : job.machine;
    const FileDescriptor written = job.disposable ? m_written.writeDown(machine) : FileDescriptor();
    std::optional<Outcome> outcome;
    if (job.disposable) {
        const bool created = co_await createMachine(orb, machine, job.distro);
        if (!self)
            co_return;
        if (!created) {
            const QString reason = m_currentTool.isStopRequested() ? u"stopped"_s : u"machine creation failed"_s;
            append(u"Could not create the disposable machine ("_s + reason + u").\n"_s, OutputKind::fail);
            outcome = Outcome{std::nullopt, reason};
        }
    } else if (machine.isEmpty()) {
        append(u"Choose a machine first (or create one).\n"_s, OutputKind::fail);
        outcome = Outcome{std::nullopt, u"no machine"_s};
    }

    if (!outcome) {
        outcome = co_await runScript(orb, machine, job);
        if (!self)
            co_return;
    }
    if (m_record) {
        m_record->entry.exitCode = outcome->exitCode;
        m_record->entry.note = outcome->note;
    }
    if (job.disposable) {
        co_await deleteMachine(orb, machine);
        if (!self)
            co_return;
    }

    addToHistory();
    m_phase = QString();
    m_startedAt = std::nullopt;
    m_isRunning = false;
}

QCoro::Task<bool> RunController::createMachine(QString orb, QString name, QString distro)
{
    const QPointer<RunController> self(this);
    m_phase = u"Creating "_s + name + u'…';
    append(u"Creating disposable machine "_s + name + u" ("_s + distro + u")…\n"_s, OutputKind::info);
    const QStringList arguments{u"create"_s, distro, name};
    const OutputHandler onOutput = outputHandler(OutputKind::info);
    const OrbCLI::StreamResult result =
        co_await m_currentTool.stream(orb, arguments, std::nullopt, m_limits.creation, onOutput);
    if (!self)
        co_return false;
    co_return result.status == 0 && !m_currentTool.isStopRequested();
}

QCoro::Task<RunController::Outcome> RunController::runScript(QString orb, QString machine, RunJob job)
{
    const QPointer<RunController> self(this);
    const QString script = ScriptComposition::compose(job.script, job.folder);
    const QString shell = ScriptComposition::shellFor(job.distro);
    m_phase = u"Running in "_s + machine;
    append(ScriptComposition::echoedCommand(machine, shell, job.folder), OutputKind::info);
    const QStringList arguments{u"-m"_s, machine, shell, u"-s"_s};
    const std::optional<double> timeLimit = job.timeoutEnabled ? std::optional(m_limits.script) : std::nullopt;
    const OutputHandler onOutput = outputHandler(OutputKind::out);
    const OrbCLI::StreamResult result = co_await m_currentTool.stream(orb, arguments, script, timeLimit, onOutput);
    if (!self)
        co_return Outcome();

    if (result.timedOut) {
        append(u"\nTimed out after 10 minutes and was stopped.\n"_s, OutputKind::warn);
        co_return Outcome{std::nullopt, u"timed out"_s};
    }
    if (m_currentTool.isStopRequested()) {
        append(u"\nStopped by user.\n"_s, OutputKind::warn);
        co_return Outcome{std::nullopt, u"stopped"_s};
    }
    const QString elapsed = Duration::text(secondsSince(*m_startedAt.value()));
    append(u"\nexit status "_s + QString::number(result.status) + u" · "_s + elapsed + u'\n',
           result.status == 0 ? OutputKind::ok : OutputKind::fail);
    co_return Outcome{result.status, QString()};
}

QCoro::Task<> RunController::deleteMachine(QString orb, QString name)
{
    const QPointer<RunController> self(this);
    m_phase = u"Deleting "_s + name + u'…';
    append(u"Deleting disposable machine "_s + name + u"…\n"_s, OutputKind::info);
    const CLIResult result = co_await OrbCLI::deleteMachine(orb, name, m_limits.deletion);
    if (!self)
        co_return;
    if (result.succeeded()) {
        m_written.strikeOut(name);
        append(u"Deleted "_s + name + u".\n"_s, OutputKind::info);
    } else {
        m_undeletedMachine = name;
        append(u"Could not delete "_s + name + u": "_s + result.combined() + u". Remove it in the Machines tab.\n"_s,
               OutputKind::warn);
    }
}

void RunController::installPackages(const QString &packages, const QString &machine, const QString &distro,
                                    bool timeoutEnabled, HistoryStore *history)
{
    if (machine.isEmpty())
        return;
    const QStringList names = ScriptComposition::packagesIn(packages);
    if (!ScriptComposition::arePackageNamesValid(names)) {
        append(u"Package names may only contain letters, digits and . + _ : = ~ -\n"_s, OutputKind::fail);
        return;
    }
    const std::optional<QString> script = packageScript(distro, names);
    if (!script) {
        append(u"Package shortcut supports Ubuntu, Debian and Alpine machines only (this one is "_s + distro +
                   u").\n"_s,
               OutputKind::fail);
        return;
    }
    start({.script = *script,
           .label = u"install packages: "_s + names.join(u' '),
           .machine = machine,
           .distro = distro,
           .disposable = false,
           .folder = std::nullopt,
           .timeoutEnabled = timeoutEnabled},
          history);
}

std::optional<QString> RunController::packageScript(const QString &distro, const QStringList &packages)
{
    const QString names = packages.join(u' ');
    const QString system = distro.toLower();
    const QString asRoot = u"if [ \"$(id -u)\" = 0 ]; then S=\"\"; else S=sudo; fi\n"_s;
    if (system.contains("ubuntu"_L1) || system.contains("debian"_L1)) {
        return asRoot +
               u"$S env DEBIAN_FRONTEND=noninteractive apt-get update && "
               u"$S env DEBIAN_FRONTEND=noninteractive apt-get install -y "_s +
               names + u'\n';
    }
    if (system.contains("alpine"_L1))
        return asRoot + u"$S apk add "_s + names + u'\n';
    return std::nullopt;
}
