#pragma once

#include <QHashFunctions>
#include <QString>

/// One Docker container as `docker ps` lists it; its identity is its id, which is never empty.
struct ContainerInfo {
    QString id;
    QString name;
    QString image;
    QString state;
    QString status;
    QString ports;

    /// The state word, in any letter case, is "running"; every other state counts as not running.
    bool isRunning() const { return state.compare(QLatin1String("running"), Qt::CaseInsensitive) == 0; }

    bool operator==(const ContainerInfo &) const = default;
};

inline std::size_t qHash(const ContainerInfo &container, std::size_t seed = 0)
{
    return qHashMulti(seed, container.id, container.name, container.image, container.state, container.status,
                      container.ports);
}
