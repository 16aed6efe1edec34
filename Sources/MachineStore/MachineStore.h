#pragma once

// The list of Linux machines and what the user does to them on the Machines screen. All on the main thread.
//
//   idle ──create, start, stop, remove (checks passed)──▶ busy ──tool ended, log written──▶ idle ──▶ refresh
//
// `busy` is the only guard: a request that arrives while it is true is ignored. A refresh is never blocked and does not
// touch `busy`, and of two at once the later to finish decides. No operation fails to its caller: listing reports
// through `error`, the operations through `log`. All return at once, and nobody need await what they return; a store
// that is destroyed meanwhile leaves the tool to itself.
//
// One thing a refresh adds to `log`, and only while no operation writes there: the disposable machines that an earlier
// start of the program left behind (DisposableMachines.h), each once, when it is first listed. One that has not been
// listed for as long as its creation may take is gone.

#include "MachineStore/Distro.h"
#include "MachineStore/Machine.h"
#include "OrbCLI/DisposableMachines.h"
#include "OrbCLI/ToolLog.h"

#include <QList>
#include <QObject>
#include <QProperty>
#include <QString>
#include <QStringList>
#include <qcorotask.h>

#include <optional>

/// Seconds; tests shorten them.
struct MachineTimeLimits {
    double list = 10;
    double simple = 120;
    double deletion = 120;
    double creation = 900;
};

class MachineStore : public QObject
{
    Q_OBJECT

public:
    /// `written` is where the names of disposable machines are written down.
    explicit MachineStore(MachineTimeLimits limits = {}, DisposableMachines written = {}, QObject *parent = nullptr);

    /// The list last read, in the order `orb` printed it. A failed refresh leaves it, unless `orb` is missing.
    const QList<Machine> &machines() const { return m_machines; }
    /// Why the last refresh failed; none after a good one.
    std::optional<QString> error() const { return m_error; }
    bool busy() const { return m_busy; }
    /// What goes on while busy, as a sentence: "The machine box is being created."
    QString operation() const { return m_operation; }
    /// The record of the last operation; a failed one explains itself here.
    QString log() const { return m_log.text(); }

    /// Reads the list anew, as JSON and failing that as a table; changes `machines` and `error`.
    QCoro::Task<> refresh();

    /// Creates a machine; a name that is malformed or taken is refused in `log`.
    QCoro::Task<> create(Distro distro, QString name);

    /// Runs `orb` with {"start" or "stop", the machine's name}; `log` is emptied or tells the failure.
    QCoro::Task<> simple(QStringList arguments);

    /// Deletes a machine for good; `log` tells the outcome. (`delete` is a word of the language.)
    QCoro::Task<> remove(QString name);

Q_SIGNALS:
    void machinesChanged();
    void errorChanged();
    void busyChanged();
    void logChanged();

private:
    /// The path of `orb`; nothing, and nothing is to be done, while another operation is going on or without `orb`.
    std::optional<QString> orbForOperation() const;
    void beginOperation(const QString &machine, const QString &participle);
    QCoro::Task<> endOperation();
    void setMachines(const QList<Machine> &machines);
    void tellLeftBehind();

    const MachineTimeLimits m_limits;
    const DisposableMachines m_written;
    /// Written down before this start, and neither listed yet nor known to be gone.
    QStringList m_earlier;
    QString m_operation;
    QList<Machine> m_machines;
    ToolLog m_log;
    Q_OBJECT_BINDABLE_PROPERTY(MachineStore, std::optional<QString>, m_error, &MachineStore::errorChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(MachineStore, bool, m_busy, false, &MachineStore::busyChanged)
};
