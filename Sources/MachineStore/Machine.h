#pragma once

#include <QHashFunctions>
#include <QString>

/// One Linux machine as `orb` lists it; its identity is its name.
struct Machine {
    QString name;
    /// The state word as reported, "unknown" when none was.
    QString state;
    QString distro;
    QString version;

    const QString &id() const { return name; }

    /// "ubuntu noble", or the distribution alone when there is no version.
    QString distroLabel() const { return version.isEmpty() ? distro : distro + QLatin1Char(' ') + version; }

    /// The state word, in any letter case, is "running".
    bool isRunning() const { return state.compare(QLatin1String("running"), Qt::CaseInsensitive) == 0; }

    bool operator==(const Machine &) const = default;
};

inline std::size_t qHash(const Machine &machine, std::size_t seed = 0)
{
    return qHashMulti(seed, machine.name, machine.state, machine.distro, machine.version);
}
