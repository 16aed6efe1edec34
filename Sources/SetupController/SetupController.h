#pragma once

// Knows whether OrbStack is installed and running; installs it through Homebrew, starts it and stops it. All on the
// main thread.
//
//   any state ──bringUp──▶ starting ──status says running──▶ running
//                             ├──90 s over, or cancelled──▶ stopped
//                             └──orb missing──▶ notInstalled
//   refresh, while not busy: ▶ notInstalled | stopped | running
//
// `busy` is the only guard against overlapping operations, from the request to its last step; refresh never waits for
// it but leaves `state` alone while it holds, and drops an answer asked for before an operation began. Every failure
// ends as a sentence in `note`; what the tools printed while installing or starting is in `log`. Operations return at
// once, and nobody need await what they return; destroyed meanwhile, the controller leaves the tool to itself.

#include "OrbCLI/CurrentTool.h"
#include "OrbCLI/ToolLog.h"

#include <QObject>
#include <QOperatingSystemVersion>
#include <QPointer>
#include <QProperty>
#include <qcorotask.h>

/// What is known of OrbStack. `running` is the one state in which machines, runs and containers are offered.
enum class OrbState { checking, notInstalled, stopped, starting, running };

/// Seconds; tests shorten them.
struct SetupTimeLimits {
    double status = 10;
    double start = 90;
    double stop = 60;
    double install = 1800;
    double pollInterval = 2;
};

class SetupController : public QObject
{
    Q_OBJECT

public:
    explicit SetupController(SetupTimeLimits limits = {}, bool macSupported = isMacSupported(),
                             QObject *parent = nullptr);

    OrbState state() const { return m_state; }
    bool hasDocker() const { return m_hasDocker; }
    bool hasBrew() const { return m_hasBrew; }
    bool busy() const { return m_busy; }
    /// What goes on while busy, as a sentence: "OrbStack is being installed."
    QString operation() const { return m_operation; }
    /// At most 200,000 characters; past that its last 150,000.
    QString log() const { return m_log.text(); }
    QString note() const { return m_note; }
    /// False only on a Mac older than macOS 14.
    bool macSupported() const { return m_macSupported; }

    /// Looks for the tools and asks `orb status`; changes `hasBrew`, `hasDocker` and, while not busy, `state`.
    QCoro::Task<> refresh();

    /// Installs OrbStack, then starts it.
    QCoro::Task<> install();

    /// Starts OrbStack and waits until it reports running.
    void start();

    /// Stops OrbStack.
    QCoro::Task<> stop();

    /// Ends an install or a start early; the tool that runs for it is asked to terminate.
    void cancel();

    /// Opens the OrbStack website in the user's browser. (The opener is given by the application: no browser, no
    /// windows on this floor.)
    void openOrbStackSite();

    /// True on every system but a macOS before 14.0.
    static bool isMacSupported();
    /// Whether this version of macOS is 14.0 or later.
    static bool isSupported(const QOperatingSystemVersion &version);

Q_SIGNALS:
    void stateChanged();
    void hasDockerChanged();
    void hasBrewChanged();
    void busyChanged();
    void logChanged();
    void noteChanged();
    /// The application opens this address in the browser.
    void siteRequested(const QString &address);

private:
    void beginOperation(const QString &participle);
    void endOperation();
    QCoro::Task<> bringUp();

    const SetupTimeLimits m_limits;
    const bool m_macSupported;
    CurrentTool m_currentTool;
    ToolLog m_log;
    QString m_operation;
    /// How many operations began, so that a refresh sees whether one did while it waited.
    int m_operations = 0;
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(SetupController, OrbState, m_state, OrbState::checking,
                                         &SetupController::stateChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(SetupController, bool, m_hasDocker, false, &SetupController::hasDockerChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(SetupController, bool, m_hasBrew, false, &SetupController::hasBrewChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(SetupController, bool, m_busy, false, &SetupController::busyChanged)
    Q_OBJECT_BINDABLE_PROPERTY(SetupController, QString, m_note, &SetupController::noteChanged)
};
