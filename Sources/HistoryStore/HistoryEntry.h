#pragma once

#include <QDateTime>
#include <QHashFunctions>
#include <QString>
#include <QUuid>

#include <cstdint>
#include <optional>

/// One past run; its identity is its id.
struct HistoryEntry {
    QUuid id;
    /// The script as the user gave it, or the label of a package installation.
    QString command;
    /// The machine's name, "disposable (ubuntu)" for a throw-away one, empty when none was chosen.
    QString machine;
    /// None when the run ended without one: stopped, timed out, never started.
    std::optional<std::int64_t> exitCode;
    /// Why there is no exit status; may be empty.
    QString note;
    /// The run's start. The file keeps whole seconds only.
    QDateTime date;
    /// Seconds.
    double duration = 0;

    bool operator==(const HistoryEntry &) const = default;
};

inline std::size_t qHash(const HistoryEntry &entry, std::size_t seed = 0)
{
    return qHashMulti(seed, entry.id, entry.command, entry.machine, entry.exitCode.has_value(),
                      entry.exitCode.value_or(0), entry.note, entry.date, entry.duration);
}
