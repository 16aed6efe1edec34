#include "ContainerStore/ContainerStore.h"

#include "ContainerStore/ContainerList.h"
#include "OrbCLI/OrbCLI.h"
#include "OrbCLI/ToolLocation.h"
#include "Text/WholePattern.h"

#include <QPointer>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace
{

std::optional<QString> findDocker()
{
    return OrbCLI::find(u"docker"_s);
}

} // namespace

ContainerStore::ContainerStore(ContainerTimeLimits limits, QObject *parent) : QObject(parent), m_limits(limits) {}

QCoro::Task<> ContainerStore::refresh()
{
    const std::optional<QString> docker = findDocker();
    if (!docker) {
        setContainers({});
        m_error = u"The docker command was not found. Install OrbStack (it provides docker) and start it."_s;
        co_return;
    }
    const QStringList arguments{u"ps"_s, u"-a"_s, u"--format"_s, u"{{json .}}"_s};
    const QPointer<ContainerStore> self(this);
    const CLIResult result = co_await OrbCLI::run(*docker, arguments, std::nullopt, m_limits.list);
    if (!self)
        co_return;
    if (result.launchError) {
        m_error = result.launchError;
    } else if (result.timedOut) {
        m_error = u"docker ps timed out. Is OrbStack running?"_s;
    } else if (result.status == 0) {
        setContainers(OrbCLI::parseContainers(result.stdout));
        m_error = std::nullopt;
    } else {
        m_error = result.combined();
    }
}

void ContainerStore::action(const QString &verb, const ContainerInfo &container)
{
    if (m_busy)
        return;
    const std::optional<QString> docker = findDocker();
    if (!docker)
        return;
    m_busy = true;
    performAction(*docker, verb, container.name);
}

QCoro::Task<> ContainerStore::performAction(QString docker, QString verb, QString name)
{
    QStringList arguments{verb};
    if (verb == u"rm"_s)
        arguments << u"-f"_s; // a running container is removed too
    arguments << name;
    const QPointer<ContainerStore> self(this);
    const CLIResult result = co_await OrbCLI::run(docker, arguments, std::nullopt, m_limits.action);
    if (!self)
        co_return;
    m_message = result.succeeded() ? QString() : u"docker "_s + verb + u" failed: "_s + result.combined();
    m_busy = false;
    co_await refresh();
}

void ContainerStore::logs(const ContainerInfo &container)
{
    if (const std::optional<QString> docker = findDocker())
        performLogs(*docker, container.name);
}

QCoro::Task<> ContainerStore::performLogs(QString docker, QString name)
{
    const QStringList arguments{u"logs"_s, u"--tail"_s, u"300"_s, name};
    const QPointer<ContainerStore> self(this);
    const CLIResult result = co_await OrbCLI::run(docker, arguments, std::nullopt, m_limits.logs);
    if (!self)
        co_return;
    m_logTitle = name;
    const QString output = result.combined();
    if (!result.succeeded())
        m_logText = u"Could not read logs: "_s + output;
    else
        m_logText = output.isEmpty() ? u"(no log output)"_s : output;
    m_showLogs = true;
}

void ContainerStore::runContainer(const QString &image, const QString &name, const QString &ports)
{
    if (m_busy)
        return;
    const std::optional<QString> docker = findDocker();
    if (!docker)
        return;
    const QString trimmedImage = image.trimmed();
    const QString trimmedName = name.trimmed();
    static const WholePattern imageForm(u"[A-Za-z0-9][A-Za-z0-9._/:@-]*"_s);
    if (!imageForm.matches(trimmedImage)) {
        m_message = u"Enter a valid image name, for example nginx:latest."_s;
        return;
    }
    static const WholePattern nameForm(u"[A-Za-z0-9][A-Za-z0-9_.-]*"_s);
    if (!trimmedName.isEmpty() && !nameForm.matches(trimmedName)) {
        m_message = u"The container name has characters Docker does not allow."_s;
        return;
    }
    QStringList arguments{u"run"_s, u"-d"_s};
    if (!trimmedName.isEmpty())
        arguments << u"--name"_s << trimmedName;
    static const QRegularExpression separator(u"[, ]"_s);
    static const WholePattern mappingForm(u"([0-9.]+:)?[0-9]+(:[0-9]+)?(/(tcp|udp))?"_s);
    for (const QString &mapping : ports.split(separator, Qt::SkipEmptyParts)) {
        if (!mappingForm.matches(mapping)) {
            m_message = u"Ports look like 8080:80, separated by commas."_s;
            return;
        }
        arguments << u"-p"_s << mapping;
    }
    arguments << trimmedImage;
    m_busy = true;
    m_message = u"Running "_s + trimmedImage + u"… (pulling the image can take a while)"_s;
    performRun(*docker, arguments, trimmedName.isEmpty() ? trimmedImage : trimmedName);
}

QCoro::Task<> ContainerStore::performRun(QString docker, QStringList arguments, QString started)
{
    const QPointer<ContainerStore> self(this);
    const CLIResult result = co_await OrbCLI::run(docker, arguments, std::nullopt, m_limits.run);
    if (!self)
        co_return;
    m_message = result.succeeded() ? u"Started "_s + started + u'.' : u"docker run failed: "_s + result.combined();
    m_busy = false;
    co_await refresh();
}

void ContainerStore::setContainers(const QList<ContainerInfo> &containers)
{
    if (m_containers == containers)
        return;
    m_containers = containers;
    Q_EMIT containersChanged();
}
