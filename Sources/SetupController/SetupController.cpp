#include "SetupController/SetupController.h"

#include "OrbCLI/OrbCLI.h"
#include "OrbCLI/ToolLocation.h"
#include "Process/AwakeClock.h"

#include <QTimer>
#include <qcorotimer.h>

#include <chrono>

using namespace Qt::StringLiterals;

namespace
{

std::chrono::nanoseconds duration(double seconds)
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
}

QCoro::Task<> sleep(double seconds)
{
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    timer.start(std::chrono::ceil<std::chrono::milliseconds>(duration(seconds)));
    co_await timer;
}

QCoro::Task<bool> reportsRunning(QString orb, double timeLimit)
{
    const QStringList arguments{u"status"_s};
    const CLIResult result =
        co_await OrbCLI::run(orb, arguments, std::nullopt, timeLimit, OrbCLI::wholeList, OrbCLI::pollingGraceTime);
    co_return result.succeeded() && result.combined().toLower().contains("running"_L1);
}

} // namespace

SetupController::SetupController(SetupTimeLimits limits, bool macSupported, QObject *parent)
    : QObject(parent),
      m_limits(limits),
      m_macSupported(macSupported)
{
    connect(&m_log, &ToolLog::changed, this, &SetupController::logChanged);
}

QCoro::Task<> SetupController::refresh()
{
    m_hasBrew = OrbCLI::findBrew().has_value();
    m_hasDocker = OrbCLI::find(u"docker"_s).has_value();
    if (m_busy)
        co_return;
    const std::optional<QString> orb = OrbCLI::find(u"orb"_s);
    if (!orb) {
        m_state = OrbState::notInstalled;
        co_return;
    }
    const QPointer<SetupController> self(this);
    const int operations = m_operations;
    const bool running = co_await reportsRunning(*orb, m_limits.status);
    // An operation that began meanwhile owns the state, and after its end knows it better than this old answer.
    if (!self || m_operations != operations)
        co_return;
    m_state = running ? OrbState::running : OrbState::stopped;
}

QCoro::Task<> SetupController::install()
{
    if (m_busy)
        co_return;
    const std::optional<QString> brew = OrbCLI::findBrew();
    if (!brew)
        co_return;
    beginOperation(u"installed"_s);
    m_log.replace(QString());
    m_note = u"Installing OrbStack with Homebrew…"_s;
    m_log.append("$ brew install --cask orbstack\n");
    const QPointer<SetupController> self(this);
    const QStringList arguments{u"install"_s, u"--cask"_s, u"orbstack"_s};
    const OutputHandler toLog = m_log.outputHandler();
    const OrbCLI::StreamResult result =
        co_await m_currentTool.stream(*brew, arguments, std::nullopt, m_limits.install, toLog);
    if (!self)
        co_return;
    // First of all whether the user cancelled: brew may still have ended well, or badly because of it.
    if (!m_currentTool.isStopRequested() && result.status == 0) {
        m_log.append("\nInstall finished.\n");
        co_await bringUp();
        co_return;
    }
    endOperation();
    if (m_currentTool.isStopRequested())
        m_note = u"Install cancelled."_s;
    else if (result.timedOut)
        m_note = u"Install timed out."_s;
    else
        m_note = u"Install failed (exit "_s + QString::number(result.status) + u"). See the log."_s;
    co_await refresh();
}

void SetupController::start()
{
    if (m_busy)
        return;
    beginOperation(u"started"_s);
    bringUp();
}

QCoro::Task<> SetupController::bringUp()
{
    m_state = OrbState::starting;
    const std::optional<QString> orb = OrbCLI::find(u"orb"_s);
    if (!orb) {
        endOperation();
        m_state = OrbState::notInstalled;
        m_note = u"orb was not found after installing. OrbStack may need to be opened once from Applications to "
                 u"finish its setup."_s;
        co_return;
    }
    m_note = u"Starting OrbStack…"_s;
    m_log.append("$ orb start\n");

    const QPointer<SetupController> self(this);
    const auto deadline = AwakeClock::now() + duration(m_limits.start);
    const QStringList arguments{u"start"_s};
    // How the command ends does not matter: only what OrbStack reports afterwards does.
    const OutputHandler toLog = m_log.outputHandler();
    co_await m_currentTool.stream(*orb, arguments, std::nullopt, m_limits.start, toLog);
    if (!self)
        co_return;
    while (AwakeClock::now() < deadline && !m_currentTool.isStopRequested()) {
        const bool running = co_await reportsRunning(*orb, m_limits.status);
        if (!self)
            co_return;
        if (running) {
            endOperation();
            m_state = OrbState::running;
            m_note = QString();
            co_return;
        }
        co_await sleep(m_limits.pollInterval);
        if (!self)
            co_return;
    }
    endOperation();
    m_state = OrbState::stopped;
    m_note = m_currentTool.isStopRequested()
                 ? u"Cancelled."_s
                 : u"OrbStack did not report running within 90 seconds. It may need to be opened once from "
                   u"Applications to finish its setup."_s;
}

QCoro::Task<> SetupController::stop()
{
    if (m_busy)
        co_return;
    const std::optional<QString> orb = OrbCLI::find(u"orb"_s);
    if (!orb)
        co_return;
    beginOperation(u"stopped"_s);
    m_note = u"Stopping OrbStack…"_s;
    const QPointer<SetupController> self(this);
    const QStringList arguments{u"stop"_s};
    const CLIResult result = co_await OrbCLI::run(*orb, arguments, std::nullopt, m_limits.stop, OrbCLI::endOfLog);
    if (!self)
        co_return;
    endOperation();
    m_note = result.succeeded() ? QString() : u"Stop failed: "_s + result.combined();
    co_await refresh();
}

void SetupController::beginOperation(const QString &participle)
{
    ++m_operations;
    m_operation = u"OrbStack is being "_s + participle + u'.';
    m_currentTool.beginOperation();
    m_busy = true;
}

void SetupController::endOperation()
{
    m_operation.clear();
    m_busy = false;
}

void SetupController::cancel()
{
    m_currentTool.requestStop();
}

void SetupController::openOrbStackSite()
{
    Q_EMIT siteRequested(u"https://orbstack.dev"_s);
}

bool SetupController::isMacSupported()
{
#ifdef Q_OS_MACOS
    return isSupported(QOperatingSystemVersion::current());
#else
    return true;
#endif
}

bool SetupController::isSupported(const QOperatingSystemVersion &version)
{
    return version >= QOperatingSystemVersion(QOperatingSystemVersion::MacOS, 14, 0);
}
