#include "Unit/AllControllers/Operations.h"

#include <QRegularExpression>

#include <memory>

using namespace Qt::StringLiterals;

namespace
{

const CLIResult silent = ended(0);
const CLIResult broken = ended(1);
const QString json = u"[{\"name\":\"box\",\"state\":\"running\"}]"_s;
const QString table = u"box running\n"_s;
const QString listedContainerLine = u"{\"ID\":\"0a1b\",\"Names\":\"web\"}\n"_s;

/// A log is cut at its front, and where depends on the pieces in which it came.
QString endOf(const QString &text)
{
    return text.right(1000);
}

std::function<bool()> begun(QCoro::Task<> task)
{
    const auto isOver = std::make_shared<bool>(false);
    std::move(task).then([isOver] { *isOver = true; });
    return [isOver] { return *isOver; };
}

// ---- Machines

QString toldMachines(const QStringList &names, const QString &error, const QString &log)
{
    return u"machines: "_s + names.join(u' ') + u"; error: "_s + error + u"; log: "_s + endOf(log);
}

QString toldMachines(const AllControllers &all)
{
    QStringList names;
    for (const Machine &machine : all.machines.machines())
        names << machine.name;
    return toldMachines(names, all.machines.error().value_or(u"none"_s), all.machines.log()) +
           (all.machines.busy() ? u"; busy"_s : u""_s);
}

QString expectedList(Replay &replay, const QString &log = {}, const CLIResult &asJson = ended(0, json))
{
    if (!replay.isFound())
        return toldMachines({}, u"orb is not installed."_s, log);
    const CLIResult first = replay.next(u"orb"_s, asJson);
    if (first.succeeded() && first.stdout == json)
        return toldMachines({u"box"_s}, u"none"_s, log);
    const CLIResult second = replay.next(u"orb"_s, ended(0, table));
    if (second.launchError)
        return toldMachines({u"box"_s}, *second.launchError, log);
    if (second.timedOut)
        return toldMachines({u"box"_s}, u"orb list timed out. Is OrbStack running?"_s, log);
    if (second.status != 0)
        return toldMachines({u"box"_s}, second.combined(), log);
    return toldMachines(second.stdout == table ? QStringList(u"box"_s) : QStringList(), u"none"_s, log);
}

QString expectedCreation(Replay &replay)
{
    if (!replay.isFound())
        return toldMachines({u"box"_s}, u"none"_s, {});
    const CLIResult result = replay.next(u"orb"_s, silent);
    QString log = u"$ orb create alpine new\n"_s + result.stdout + result.stderr;
    if (result.timedOut)
        log += u"\nTimed out.\n"_s;
    else if (result.status == 0)
        log += u"\nMachine new is ready.\n"_s;
    else
        log += u"\nFailed (exit %1).\n"_s.arg(result.status);
    return expectedList(replay, log);
}

QString expectedStart(Replay &replay)
{
    if (!replay.isFound())
        return toldMachines({u"box"_s}, u"none"_s, {});
    const CLIResult result = replay.next(u"orb"_s, silent);
    return expectedList(replay,
                        result.succeeded() ? QString() : u"orb start box failed: "_s + result.combined() + u'\n');
}

QString expectedDeletion(Replay &replay, const CLIResult &forced)
{
    if (!replay.isFound())
        return toldMachines({u"box"_s}, u"none"_s, {});
    CLIResult result = replay.next(u"orb"_s, forced);
    if (!result.succeeded())
        result = replay.next(u"orb"_s, silent);
    return expectedList(replay,
                        result.succeeded() ? u"Deleted box.\n"_s : u"Delete failed: "_s + result.combined() + u'\n');
}

// ---- Containers

QString toldContainers(const QStringList &names, const QString &error, const QString &message)
{
    return u"containers: "_s + names.join(u' ') + u"; error: "_s + error + u"; message: "_s + endOf(message);
}

QString toldContainers(const AllControllers &all)
{
    QStringList names;
    for (const ContainerInfo &container : all.containers.containers())
        names << container.name;
    return toldContainers(names, all.containers.error().value_or(u"none"_s), all.containers.message()) +
           (all.containers.busy() ? u"; busy"_s : u""_s);
}

QString expectedContainers(Replay &replay, const QString &message = {})
{
    if (!replay.isFound())
        return toldContainers(
            {}, u"The docker command was not found. Install OrbStack (it provides docker) and start it."_s, message);
    const CLIResult result = replay.next(u"docker"_s, ended(0, listedContainerLine));
    if (result.timedOut)
        return toldContainers({u"web"_s}, u"docker ps timed out. Is OrbStack running?"_s, message);
    if (result.status != 0)
        return toldContainers({u"web"_s}, result.combined(), message);
    return toldContainers(result.stdout == listedContainerLine ? QStringList(u"web"_s) : QStringList(), u"none"_s,
                          message);
}

QString expectedAction(Replay &replay, const QString &verb)
{
    if (!replay.isFound())
        return toldContainers({u"web"_s}, u"none"_s, {});
    const CLIResult result = replay.next(u"docker"_s, silent);
    return expectedContainers(replay, result.succeeded() ? QString()
                                                         : u"docker "_s + verb + u" failed: "_s + result.combined());
}

QString expectedContainer(Replay &replay)
{
    if (!replay.isFound())
        return toldContainers({u"web"_s}, u"none"_s, {});
    const CLIResult result = replay.next(u"docker"_s, silent);
    return expectedContainers(replay,
                              result.succeeded() ? u"Started new."_s : u"docker run failed: "_s + result.combined());
}

QString toldLogs(bool isShown, const QString &title, const QString &text)
{
    return u"logs: "_s + (isShown ? u"shown; "_s : u"hidden; "_s) + title + u": "_s + endOf(text);
}

QString expectedLogs(Replay &replay)
{
    if (!replay.isFound())
        return toldLogs(false, {}, {});
    const CLIResult result = replay.next(u"docker"_s, ended(0, u"a log\n"_s));
    return toldLogs(true, u"web"_s,
                    result.succeeded() ? result.combined() : u"Could not read logs: "_s + result.combined());
}

// ---- OrbStack

QString toldSetup(OrbState state, const QString &note, const QString &log)
{
    return u"state: %1; note: %2; log: %3"_s.arg(static_cast<int>(state)).arg(endOf(note), endOf(log));
}

QString expectedState(Replay &replay, const QString &note = {}, const QString &log = {})
{
    if (!replay.isFound())
        return toldSetup(OrbState::notInstalled, note, log);
    const CLIResult status = replay.next(u"orb"_s, ended(0, u"Running\n"_s));
    return toldSetup(status.succeeded() && status.stdout == u"Running\n"_s ? OrbState::running : OrbState::stopped,
                     note, log);
}

QString expectedBringUp(Replay &replay, QString log = {})
{
    if (!replay.isFound())
        return toldSetup(
            OrbState::notInstalled,
            u"orb was not found after installing. OrbStack may need to be opened once from Applications to "
            u"finish its setup."_s,
            log);
    const CLIResult start = replay.next(u"orb"_s, silent);
    log += u"$ orb start\n"_s + start.stdout + start.stderr;
    while (!replay.isLate() && replay.isFound()) {
        const CLIResult status = replay.next(u"orb"_s, ended(0, u"Running\n"_s));
        if (status.succeeded() && status.stdout == u"Running\n"_s)
            return toldSetup(OrbState::running, {}, log);
    }
    return toldSetup(OrbState::stopped,
                     u"OrbStack did not report running within 90 seconds. It may need to be opened once from "
                     u"Applications to finish its setup."_s,
                     log);
}

QString expectedInstallation(Replay &replay)
{
    if (!replay.isFound())
        return toldSetup(OrbState::running, {}, {});
    const CLIResult result = replay.next(u"brew"_s, silent);
    const QString log = u"$ brew install --cask orbstack\n"_s + result.stdout + result.stderr;
    if (result.timedOut)
        return expectedState(replay, u"Install timed out."_s, log);
    if (result.status != 0)
        return expectedState(replay, u"Install failed (exit %1). See the log."_s.arg(result.status), log);
    return expectedBringUp(replay, log + u"\nInstall finished.\n"_s);
}

QString expectedStop(Replay &replay)
{
    if (!replay.isFound())
        return toldSetup(OrbState::running, {}, {});
    const CLIResult result = replay.next(u"orb"_s, silent);
    return expectedState(replay, result.succeeded() ? QString() : u"Stop failed: "_s + result.combined());
}

// ---- Runs

QString toldRun(const QString &transcript, const QString &history)
{
    static const QRegularExpression elapsed(u" · [0-9]+\\.[0-9]s\\n"_s);
    static const QRegularExpression disposable(u"sbx-[0-9a-f]{6}\\b"_s);
    return endOf(QString(transcript).replace(elapsed, u" · Ns\n"_s).replace(disposable, u"sbx-N"_s)) + u"history: "_s +
           history;
}

QString toldEntry(const QString &machine, std::optional<std::int64_t> exitCode, const QString &note)
{
    return machine + u'/' + (exitCode ? QString::number(*exitCode) : u"none"_s) + u'/' + note;
}

QString toldRun(const AllControllers &all)
{
    const QList<HistoryEntry> &entries = all.history.entries();
    const QString history =
        entries.isEmpty() ? QString() : toldEntry(entries[0].machine, entries[0].exitCode, entries[0].note);
    const bool isIdle = !all.run.isRunning() && all.run.phase().isEmpty() && !all.run.startedAt();
    return toldRun(all.run.plainText(), history) + (isIdle ? u""_s : u"; not idle"_s);
}

struct ExpectedScript {
    QString transcript;
    std::optional<std::int64_t> exitCode;
    QString note;
};

/// A text beyond the transcript's bound goes, and all before it, once text of another kind follows.
QString kept(const QString &text)
{
    return text.size() > Transcript::characterBound ? QString() : text;
}

ExpectedScript expectedScript(Replay &replay, const QString &machine, const QString &before = {})
{
    const CLIResult result = replay.next(u"orb"_s, ended(0, u"ran\n"_s));
    const QString text = before + u"$ orb -m "_s + machine + u" bash -s\n"_s + result.stdout + result.stderr;
    if (result.timedOut)
        return {kept(text) + u"\nTimed out after 10 minutes and was stopped.\n"_s, std::nullopt, u"timed out"_s};
    return {kept(text) + u"\nexit status %1 · Ns\n"_s.arg(result.status), result.status, {}};
}

QString expectedRun(Replay &replay)
{
    if (!replay.isFound())
        return toldRun(u"orb was not found. Install OrbStack first.\n"_s, {});
    const ExpectedScript script = expectedScript(replay, u"box"_s);
    return toldRun(script.transcript, toldEntry(u"box"_s, script.exitCode, script.note));
}

QString expectedDisposableRun(Replay &replay, const CLIResult &forced)
{
    if (!replay.isFound())
        return toldRun(u"orb was not found. Install OrbStack first.\n"_s, {});
    const CLIResult creation = replay.next(u"orb"_s, silent);
    QString text = kept(u"Creating disposable machine sbx-N (debian)…\n"_s + creation.stdout + creation.stderr);
    ExpectedScript script{text + u"Could not create the disposable machine (machine creation failed).\n"_s,
                          std::nullopt, u"machine creation failed"_s};
    if (creation.status == 0)
        script = expectedScript(replay, u"sbx-N"_s, text);
    text = script.transcript + u"Deleting disposable machine sbx-N…\n"_s;
    CLIResult deletion = replay.next(u"orb"_s, forced);
    if (!deletion.succeeded())
        deletion = replay.next(u"orb"_s, silent);
    text += deletion.succeeded()
                ? u"Deleted sbx-N.\n"_s
                : u"Could not delete sbx-N: "_s + deletion.combined() + u". Remove it in the Machines tab.\n"_s;
    return toldRun(text, toldEntry(u"disposable (debian)"_s, script.exitCode, script.note));
}

std::function<bool()> beginRun(AllControllers &all, bool isDisposable)
{
    all.run.clearTranscript();
    all.run.start({.script = u"a script\n"_s,
                   .label = u"a label"_s,
                   .machine = u"box"_s,
                   .distro = u"debian"_s,
                   .disposable = isDisposable,
                   .folder = std::nullopt,
                   .timeoutEnabled = true},
                  &all.history);
    return [&all] { return !all.run.isRunning(); };
}

const ContainerInfo listedContainer{u"0a1b"_s, u"web"_s, {}, {}, {}, {}};

} // namespace

const QList<Operation> &allOperations()
{
    using All = AllControllers;
    const auto machines = [](const All &all) { return toldMachines(all); };
    const auto containers = [](const All &all) { return toldContainers(all); };
    const auto logs = [](const All &all) {
        return toldLogs(all.containers.showLogs(), all.containers.logTitle(), all.containers.logText());
    };
    const auto setup = [](const All &all) {
        return toldSetup(all.setup.state(), all.setup.note(), all.setup.log()) +
               (all.setup.busy() ? u"; busy"_s : u""_s);
    };
    // This log goes on from one start to the next.
    const auto lastStart = [](const All &all) {
        const QString log = all.setup.log();
        return toldSetup(all.setup.state(), all.setup.note(), log.mid(log.lastIndexOf(u"$ orb start\n"_s))) +
               (all.setup.busy() ? u"; busy"_s : u""_s);
    };
    const auto runs = [](const All &all) { return toldRun(all); };
    const auto act = [](const QString &verb) {
        return [verb](All &all) { return begun(all.containers.action(verb, listedContainer)); };
    };
    const auto acted = [](const QString &verb) {
        return [verb](Replay &replay) { return expectedAction(replay, verb); };
    };
    const QString noJson = u"[ \"$1 $2\" != 'list -f' ] || exit 1"_s;
    const QString noForce = u"[ \"$1 $2\" != 'delete -f' ] || exit 1"_s;

    static const QList<Operation> operations{
        {"listing machines",
         1,
         [](All &all) { return begun(all.machines.refresh()); },
         machines,
         [](Replay &replay) { return expectedList(replay); },
         {},
         true},
        {"listing machines as a table", 2, [](All &all) { return begun(all.machines.refresh()); }, machines,
         [](Replay &replay) { return expectedList(replay, {}, broken); }, noJson, true},
        {"creating a machine", 2, [](All &all) { return begun(all.machines.create(Distro::alpine, u"new"_s)); },
         machines, expectedCreation},
        {"starting a machine", 2, [](All &all) { return begun(all.machines.simple({u"start"_s, u"box"_s})); }, machines,
         expectedStart},
        {"deleting a machine", 2, [](All &all) { return begun(all.machines.remove(u"box"_s)); }, machines,
         [](Replay &replay) { return expectedDeletion(replay, silent); }},
        {"deleting a machine by its answer", 3, [](All &all) { return begun(all.machines.remove(u"box"_s)); }, machines,
         [](Replay &replay) { return expectedDeletion(replay, broken); }, noForce},
        {"listing containers",
         1,
         [](All &all) { return begun(all.containers.refresh()); },
         containers,
         [](Replay &replay) { return expectedContainers(replay); },
         {},
         true},
        {"starting a container", 2, act(u"start"_s), containers, acted(u"start"_s)},
        {"stopping a container", 2, act(u"stop"_s), containers, acted(u"stop"_s)},
        {"removing a container", 2, act(u"rm"_s), containers, acted(u"rm"_s)},
        {"making a container", 2, [](All &all) { return begun(all.containers.runContainer(u"i"_s, u"new"_s, {})); },
         containers, expectedContainer},
        {"reading logs", 1, [](All &all) { return begun(all.containers.logs(listedContainer)); }, logs, expectedLogs},
        {"asking for OrbStack's state",
         1,
         [](All &all) { return begun(all.setup.refresh()); },
         setup,
         [](Replay &replay) { return expectedState(replay); },
         {},
         true},
        {"installing OrbStack", 3,
         [](All &all) {
             all.setup.install();
             return [&all] { return !all.setup.busy(); };
         },
         setup, expectedInstallation},
        {"starting OrbStack", 2,
         [](All &all) {
             all.setup.start();
             return [&all] { return !all.setup.busy(); };
         },
         lastStart, [](Replay &replay) { return expectedBringUp(replay); }},
        {"stopping OrbStack", 2, [](All &all) { return begun(all.setup.stop()); }, setup, expectedStop},
        {"running a script", 1, [](All &all) { return beginRun(all, false); }, runs, expectedRun},
        {"running in a disposable machine", 3, [](All &all) { return beginRun(all, true); }, runs,
         [](Replay &replay) { return expectedDisposableRun(replay, silent); }},
        {"running in a disposable machine deleted by its answer", 4, [](All &all) { return beginRun(all, true); }, runs,
         [](Replay &replay) { return expectedDisposableRun(replay, broken); }, noForce},
    };
    return operations;
}
