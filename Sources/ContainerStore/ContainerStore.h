#pragma once

// The list of Docker containers, what the user does to them, their logs, and starting new ones. All on the main thread.
//
//   idle ──action or runContainer (checks passed)──▶ busy ──tool ended, message written──▶ idle ──▶ refresh
//
// `busy` is the only guard, for action and runContainer; refresh and logs run beside anything. Listing reports through
// `error`, action and runContainer through `message`, logs through the log fields. All return at once, and nobody need
// await what they return; a store that is destroyed meanwhile leaves the tool to itself.

#include "ContainerStore/ContainerInfo.h"

#include <QList>
#include <QObject>
#include <QProperty>
#include <qcorotask.h>

#include <optional>

/// Seconds; tests shorten them.
struct ContainerTimeLimits {
    double list = 10;
    double logs = 10;
    double action = 60;
    double run = 600;
};

class ContainerStore : public QObject
{
    Q_OBJECT

public:
    explicit ContainerStore(ContainerTimeLimits limits = {}, QObject *parent = nullptr);

    /// The list last read, in Docker's order. A failed refresh leaves it, unless `docker` is missing.
    const QList<ContainerInfo> &containers() const { return m_containers; }
    /// Why the last refresh failed; none after a good one.
    std::optional<QString> error() const { return m_error; }
    bool busy() const { return m_busy; }
    /// What goes on while busy, as a sentence: "The container web is being started."
    QString operation() const { return m_operation; }
    /// The outcome of the last action or start.
    QString message() const { return m_message; }
    QString logTitle() const { return m_logTitle; }
    QString logText() const { return m_logText; }
    bool showLogs() const { return m_showLogs; }
    /// The screen sets this to false when the log sheet is closed.
    void setShowLogs(bool show) { m_showLogs = show; }

    /// Whether the `docker` tool is installed at this moment.
    static bool hasDocker();

    /// Reads the list anew; changes `containers` and `error`.
    QCoro::Task<> refresh();

    /// Runs `docker VERB NAME`, `verb` being "start", "stop" or "rm" (which removes a running container too).
    QCoro::Task<> action(QString verb, ContainerInfo container);

    /// Reads the last 300 lines of a container's log into `logTitle` and `logText` and sets `showLogs`.
    QCoro::Task<> logs(ContainerInfo container);

    /// Starts a new detached container from texts as the user typed them; what cannot be right is refused in `message`.
    QCoro::Task<> runContainer(QString image, QString name, QString ports);

Q_SIGNALS:
    void containersChanged();
    void errorChanged();
    void busyChanged();
    void messageChanged();
    void logTitleChanged();
    void logTextChanged();
    void showLogsChanged();

private:
    /// The path of `docker`; nothing, and nothing is to be done, while another operation is going on or without
    /// `docker`.
    std::optional<QString> dockerForOperation() const;
    void beginOperation(const QString &sentence);
    QCoro::Task<> endOperation();
    void setContainers(const QList<ContainerInfo> &containers);

    const ContainerTimeLimits m_limits;
    QList<ContainerInfo> m_containers;
    QString m_operation;
    Q_OBJECT_BINDABLE_PROPERTY(ContainerStore, std::optional<QString>, m_error, &ContainerStore::errorChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(ContainerStore, bool, m_busy, false, &ContainerStore::busyChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ContainerStore, QString, m_message, &ContainerStore::messageChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ContainerStore, QString, m_logTitle, &ContainerStore::logTitleChanged)
    Q_OBJECT_BINDABLE_PROPERTY(ContainerStore, QString, m_logText, &ContainerStore::logTextChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(ContainerStore, bool, m_showLogs, false, &ContainerStore::showLogsChanged)
};
