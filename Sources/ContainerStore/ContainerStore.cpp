#include "ContainerStore/ContainerStore.h"

#include "ContainerStore/ContainerList.h"
#include "OrbCLI/OrbCLI.h"
#include "OrbCLI/ToolLocation.h"
#include "Text/WholePattern.h"

#include <QPointer>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

std::optional<QString> findDocker()
{
    return OrbCLI::find(u"docker"_s);
}

/// Why no container can be made of what the user typed, as a sentence for the user; none when one can.
std::optional<QString> refusalOf(const QString &image, const QString &name, const QStringList &ports)
{
    static const WholePattern imageForm(u"[A-Za-z0-9][A-Za-z0-9._/:@-]*"_s);
    static const WholePattern nameForm(u"[A-Za-z0-9][A-Za-z0-9_.-]*"_s);
    static const WholePattern portForm(u"([0-9.]+:)?[0-9]+(:[0-9]+)?(/(tcp|udp))?"_s);
    if (!imageForm.matches(image))
        return u"Enter a valid image name, for example nginx:latest."_s;
    if (!name.isEmpty() && !nameForm.matches(name))
        return u"The container name has characters Docker does not allow."_s;
    if (!std::all_of(ports.cbegin(), ports.cend(), [](const QString &port) { return portForm.matches(port); }))
        return u"Ports look like 8080:80, separated by commas."_s;
    return std::nullopt;
}

QStringList portsIn(const QString &text)
{
    static const QRegularExpression separators(u"[, ]"_s);
    return text.split(separators, Qt::SkipEmptyParts);
}

} // namespace

ContainerStore::ContainerStore(ContainerTimeLimits limits, QObject *parent) : QObject(parent), m_limits(limits) {}

bool ContainerStore::hasDocker()
{
    return findDocker().has_value();
}

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
    const CLIResult result = co_await OrbCLI::run(*docker, arguments, std::nullopt, m_limits.list, OrbCLI::wholeList,
                                                  OrbCLI::pollingGraceTime);
    if (!self)
        co_return;
    const std::optional<QString> failure = result.failure(u"docker ps"_s);
    if (!failure)
        setContainers(ContainerList::parseContainers(result.stdout));
    m_error = failure;
}

std::optional<QString> ContainerStore::dockerForOperation() const
{
    return m_busy ? std::nullopt : findDocker();
}

void ContainerStore::beginOperation(const QString &sentence)
{
    m_operation = sentence;
    m_busy = true;
}

QCoro::Task<> ContainerStore::endOperation()
{
    m_operation.clear();
    m_busy = false;
    co_await refresh();
}

QCoro::Task<> ContainerStore::action(QString verb, ContainerInfo container)
{
    const std::optional<QString> docker = dockerForOperation();
    if (!docker)
        co_return;
    const QString participle = verb == u"rm"_s ? u"removed"_s : verb == u"stop"_s ? u"stopped"_s : u"started"_s;
    beginOperation(u"The container "_s + container.name + u" is being "_s + participle + u'.');
    QStringList arguments{verb};
    if (verb == u"rm"_s)
        arguments << u"-f"_s; // a running container is removed too
    arguments << container.name;
    const QPointer<ContainerStore> self(this);
    const CLIResult result = co_await OrbCLI::run(*docker, arguments, std::nullopt, m_limits.action, OrbCLI::endOfLog);
    if (!self)
        co_return;
    m_message = result.succeeded() ? QString() : u"docker "_s + verb + u" failed: "_s + result.combined();
    co_await endOperation();
}

QCoro::Task<> ContainerStore::logs(ContainerInfo container)
{
    const std::optional<QString> docker = findDocker();
    if (!docker)
        co_return;
    const QStringList arguments{u"logs"_s, u"--tail"_s, u"300"_s, container.name};
    const QPointer<ContainerStore> self(this);
    const CLIResult result = co_await OrbCLI::run(*docker, arguments, std::nullopt, m_limits.logs, OrbCLI::endOfLog);
    if (!self)
        co_return;
    m_logTitle = container.name;
    const QString output = result.combined();
    if (!result.succeeded())
        m_logText = u"Could not read logs: "_s + output;
    else
        m_logText = output.isEmpty() ? u"(no log output)"_s : output;
    m_showLogs = true;
}

QCoro::Task<> ContainerStore::runContainer(QString image, QString name, QString ports)
{
    const std::optional<QString> docker = dockerForOperation();
    if (!docker)
        co_return;
    const QString trimmedImage = image.trimmed();
    const QString trimmedName = name.trimmed();
    const QStringList mappings = portsIn(ports);
    if (const std::optional<QString> refusal = refusalOf(trimmedImage, trimmedName, mappings)) {
        m_message = *refusal;
        co_return;
    }
    QStringList arguments{u"run"_s, u"-d"_s};
    if (!trimmedName.isEmpty())
        arguments << u"--name"_s << trimmedName;
    for (const QString &mapping : mappings)
        arguments << u"-p"_s << mapping;
    arguments << trimmedImage;
    beginOperation(u"A container of "_s + trimmedImage + u" is being started."_s);
    m_message = u"Running "_s + trimmedImage + u"… (pulling the image can take a while)"_s;
    const QPointer<ContainerStore> self(this);
    const CLIResult result = co_await OrbCLI::run(*docker, arguments, std::nullopt, m_limits.run, OrbCLI::endOfLog);
    if (!self)
        co_return;
    const QString started = trimmedName.isEmpty() ? trimmedImage : trimmedName;
    m_message = result.succeeded() ? u"Started "_s + started + u'.' : u"docker run failed: "_s + result.combined();
    co_await endOperation();
}

void ContainerStore::setContainers(const QList<ContainerInfo> &containers)
{
    if (m_containers == containers)
        return;
    m_containers = containers;
    Q_EMIT containersChanged();
}
