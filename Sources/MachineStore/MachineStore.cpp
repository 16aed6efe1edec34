#include "MachineStore/MachineStore.h"

#include "MachineStore/MachineList.h"
#include "OrbCLI/DeleteMachine.h"
#include "OrbCLI/ToolLocation.h"
#include "Text/WholePattern.h"

#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

bool isValidName(const QString &name)
{
    static const WholePattern form(u"[a-z0-9][a-z0-9-]{0,30}"_s);
    return form.matches(name);
}

} // namespace

MachineStore::MachineStore(MachineTimeLimits limits, QObject *parent) : QObject(parent), m_limits(limits) {}

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
    const CLIResult first = co_await OrbCLI::run(*orb, asJson, std::nullopt, m_limits.list);
    if (!self)
        co_return;
    if (first.succeeded()) {
        if (const std::optional<QList<Machine>> machines = OrbCLI::parseMachinesJson(first.stdout)) {
            setMachines(*machines);
            m_error = std::nullopt;
            co_return;
        }
    }

    const QStringList asTable{u"list"_s};
    const CLIResult second = co_await OrbCLI::run(*orb, asTable, std::nullopt, m_limits.list);
    if (!self)
        co_return;
    if (second.launchError) {
        m_error = second.launchError;
    } else if (second.timedOut) {
        m_error = u"orb list timed out. Is OrbStack running?"_s;
    } else if (second.status == 0) {
        setMachines(OrbCLI::parseMachinesText(second.stdout));
        m_error = std::nullopt;
    } else {
        m_error = second.combined();
    }
}

void MachineStore::create(Distro distro, const QString &name)
{
    if (m_busy)
        return;
    const std::optional<QString> orb = OrbCLI::find(u"orb"_s);
    if (!orb)
        return;
    if (!isValidName(name)) {
        setLog(u"Use lowercase letters, digits and dashes for the name.\n"_s);
        return;
    }
    const auto hasThisName = [&name](const Machine &machine) { return machine.name == name; };
    if (std::any_of(m_machines.cbegin(), m_machines.cend(), hasThisName)) {
        setLog(u"A machine named "_s + name + u" already exists.\n"_s);
        return;
    }
    m_busy = true;
    setLog(u"$ orb create "_s + rawValue(distro) + u' ' + name + u'\n');
    performCreate(*orb, rawValue(distro), name);
}

QCoro::Task<> MachineStore::performCreate(QString orb, QString distro, QString name)
{
    const QPointer<MachineStore> self(this);
    const QStringList arguments{u"create"_s, distro, name};
    const OrbCLI::StreamResult result = co_await streamToLog(orb, arguments);
    if (!self)
        co_return;
    if (result.timedOut)
        appendLog("\nTimed out.\n");
    else if (result.status == 0)
        appendLog(("\nMachine " + name.toUtf8() + " is ready.\n"));
    else
        appendLog(("\nFailed (exit " + QByteArray::number(result.status) + ").\n"));
    m_busy = false;
    co_await refresh();
}

QCoro::Task<OrbCLI::StreamResult> MachineStore::streamToLog(const QString &orb, const QStringList &arguments)
{
    // A function of its own and not a coroutine: GCC 12 destroys twice what a lambda holds when the lambda stands
    // inside an awaited expression.
    return OrbCLI::streamAsync(orb, arguments, std::nullopt, m_limits.creation, {},
                               [self = QPointer(this)](QUtf8StringView text, bool) {
                                   if (self)
                                       self->appendLog(text);
                               });
}

void MachineStore::simple(const QStringList &arguments)
{
    if (m_busy)
        return;
    const std::optional<QString> orb = OrbCLI::find(u"orb"_s);
    if (!orb)
        return;
    m_busy = true;
    performSimple(*orb, arguments);
}

QCoro::Task<> MachineStore::performSimple(QString orb, QStringList arguments)
{
    const QPointer<MachineStore> self(this);
    const CLIResult result = co_await OrbCLI::run(orb, arguments, std::nullopt, m_limits.simple);
    if (!self)
        co_return;
    setLog(result.succeeded() ? QString()
                              : u"orb "_s + arguments.join(u' ') + u" failed: "_s + result.combined() + u'\n');
    m_busy = false;
    co_await refresh();
}

void MachineStore::remove(const QString &name)
{
    if (m_busy)
        return;
    const std::optional<QString> orb = OrbCLI::find(u"orb"_s);
    if (!orb)
        return;
    m_busy = true;
    performRemove(*orb, name);
}

QCoro::Task<> MachineStore::performRemove(QString orb, QString name)
{
    const QPointer<MachineStore> self(this);
    const CLIResult result = co_await OrbCLI::deleteMachine(orb, name, m_limits.deletion);
    if (!self)
        co_return;
    setLog(result.succeeded() ? u"Deleted "_s + name + u".\n"_s : u"Delete failed: "_s + result.combined() + u'\n');
    m_busy = false;
    co_await refresh();
}

void MachineStore::setMachines(const QList<Machine> &machines)
{
    if (m_machines == machines)
        return;
    m_machines = machines;
    Q_EMIT machinesChanged();
}

void MachineStore::setLog(const QString &text)
{
    if (m_log.text() == text)
        return;
    m_log.replace(text);
    Q_EMIT logChanged();
}

void MachineStore::appendLog(QUtf8StringView text)
{
    m_log.append(text);
    Q_EMIT logChanged();
}
