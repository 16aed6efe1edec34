#include "MachineStore/MachineStore.h"

#include "MachineStore/MachineList.h"
#include "OrbCLI/DeleteMachine.h"
#include "OrbCLI/OrbCLI.h"
#include "OrbCLI/ToolLocation.h"
#include "Text/Duration.h"
#include "Text/WholePattern.h"

#include <QDateTime>
#include <QPointer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

bool isValidName(const QString &name)
{
    static const WholePattern form(u"[a-z0-9][a-z0-9-]{0,30}"_s);
    return form.matches(name);
}

} // namespace

MachineStore::MachineStore(MachineTimeLimits limits, DisposableMachines written, QObject *parent)
    : QObject(parent),
      m_limits(limits),
      m_written(std::move(written)),
      m_earlier(m_written.names())
{
    connect(&m_log, &ToolLog::changed, this, &MachineStore::logChanged);
}

QCoro::Task<> MachineStore::refresh()
{
    const std::optional<QString> orb = OrbCLI::find(u"orb"_s);
    if (!orb) {
        setMachines({});
        m_error = u"orb is not installed."_s;
        co_return;
    }

    const QPointer<MachineStore> self(this);
    const QStringList asJson{u"list"_s, u"-f"_s, u"json"_s};
    const CLIResult first =
        co_await OrbCLI::run(*orb, asJson, std::nullopt, m_limits.list, OrbCLI::wholeList, OrbCLI::pollingGraceTime);
    if (!self)
        co_return;
    if (first.succeeded()) {
        if (const std::optional<QList<Machine>> machines = MachineList::parseMachinesJson(first.stdout)) {
            setMachines(*machines);
            m_error = std::nullopt;
            tellLeftBehind();
            co_return;
        }
    }

    const QStringList asTable{u"list"_s};
    const CLIResult second =
        co_await OrbCLI::run(*orb, asTable, std::nullopt, m_limits.list, OrbCLI::wholeList, OrbCLI::pollingGraceTime);
    if (!self)
        co_return;
    const std::optional<QString> failure = second.failure(u"orb list"_s);
    if (!failure)
        setMachines(MachineList::parseMachinesText(second.stdout));
    m_error = failure;
    if (!failure)
        tellLeftBehind();
}

void MachineStore::tellLeftBehind()
{
    // The log is the operation's until its end, after which the list is read again.
    if (m_busy || m_earlier.isEmpty())
        return;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    // Looked up each time: the program that left them may have been ending still when this one began.
    for (const DisposableMachines::LeftBehind &machine : m_written.leftBehind()) {
        if (!m_earlier.contains(machine.name))
            continue;
        const auto hasThisName = [&](const Machine &listed) { return listed.name == machine.name; };
        if (std::any_of(m_machines.cbegin(), m_machines.cend(), hasThisName))
            m_log.append(machine.name.toUtf8() + " was left behind by a run that was cut off.\n");
        else if (Duration::between(machine.writtenDown, now) < m_limits.creation)
            continue; // its creation may go on all the same
        else
            m_written.strikeOut(machine.name);
        m_earlier.removeOne(machine.name);
    }
}

std::optional<QString> MachineStore::orbForOperation() const
{
    return m_busy ? std::nullopt : OrbCLI::find(u"orb"_s);
}

void MachineStore::beginOperation(const QString &machine, const QString &participle)
{
    m_operation = u"The machine "_s + machine + u" is being "_s + participle + u'.';
    m_busy = true;
}

QCoro::Task<> MachineStore::endOperation()
{
    m_operation.clear();
    m_busy = false;
    co_await refresh();
}

QCoro::Task<> MachineStore::create(Distro distro, QString name)
{
    const std::optional<QString> orb = orbForOperation();
    if (!orb)
        co_return;
    if (!isValidName(name)) {
        m_log.replace(u"Use lowercase letters, digits and dashes for the name.\n"_s);
        co_return;
    }
    const auto hasThisName = [&name](const Machine &machine) { return machine.name == name; };
    if (std::any_of(m_machines.cbegin(), m_machines.cend(), hasThisName)) {
        m_log.replace(u"A machine named "_s + name + u" already exists.\n"_s);
        co_return;
    }
    beginOperation(name, u"created"_s);
    const QPointer<MachineStore> self(this);
    const QStringList arguments{u"create"_s, rawValue(distro), name};
    m_log.replace(u"$ orb "_s + arguments.join(u' ') + u'\n');
    const OutputHandler toLog = m_log.outputHandler();
    const OrbCLI::StreamResult result =
        co_await OrbCLI::streamAsync(*orb, arguments, std::nullopt, m_limits.creation, {}, toLog);
    if (!self)
        co_return;
    if (result.timedOut)
        m_log.append("\nTimed out.\n");
    else if (result.status == 0)
        m_log.append("\nMachine " + name.toUtf8() + " is ready.\n");
    else
        m_log.append("\nFailed (exit " + QByteArray::number(result.status) + ").\n");
    co_await endOperation();
}

QCoro::Task<> MachineStore::simple(QStringList arguments)
{
    const std::optional<QString> orb = orbForOperation();
    if (!orb)
        co_return;
    beginOperation(arguments.value(1), arguments.value(0) == u"start"_s ? u"started"_s : u"stopped"_s);
    const QPointer<MachineStore> self(this);
    const CLIResult result = co_await OrbCLI::run(*orb, arguments, std::nullopt, m_limits.simple, OrbCLI::endOfLog);
    if (!self)
        co_return;
    m_log.replace(result.succeeded() ? QString()
                                     : u"orb "_s + arguments.join(u' ') + u" failed: "_s + result.combined() + u'\n');
    co_await endOperation();
}

QCoro::Task<> MachineStore::remove(QString name)
{
    const std::optional<QString> orb = orbForOperation();
    if (!orb)
        co_return;
    beginOperation(name, u"deleted"_s);
    const QPointer<MachineStore> self(this);
    const CLIResult result = co_await OrbCLI::deleteMachine(*orb, name, m_limits.deletion);
    if (!self)
        co_return;
    if (result.succeeded())
        m_written.strikeOut(name);
    m_log.replace(result.succeeded() ? u"Deleted "_s + name + u".\n"_s
                                     : u"Delete failed: "_s + result.combined() + u'\n');
    co_await endOperation();
}

void MachineStore::setMachines(const QList<Machine> &machines)
{
    if (m_machines == machines)
        return;
    m_machines = machines;
    Q_EMIT machinesChanged();
}
