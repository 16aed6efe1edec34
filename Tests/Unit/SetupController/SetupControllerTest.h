#pragma once

// What all tests of OrbStack's life share: a fake `orb`, short pauses between two polls, and the order of changes.

#include "SetupController/SetupController.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

inline const QString notFoundNote =
    QStringLiteral("orb was not found after installing. OrbStack may need to be opened once from Applications to "
                   "finish its setup.");
inline const QString lateNote =
    QStringLiteral("OrbStack did not report running within 90 seconds. It may need to be opened once from "
                   "Applications to finish its setup.");

/// A controller over fake tools, with far-away limits and short pauses between two polls.
class SetupControllerTest : public testing::Test
{
protected:
    SetupControllerTest()
    {
        QObject::connect(&setup, &SetupController::stateChanged, &setup, [this] { order << name(setup.state()); });
        QObject::connect(&setup, &SetupController::busyChanged, &setup,
                         [this] { order << (setup.busy() ? QStringLiteral("busy") : QStringLiteral("free")); });
        QObject::connect(&setup, &SetupController::noteChanged, &setup, [this] { order << setup.note(); });
    }

    static QString name(OrbState state)
    {
        return QStringList{QStringLiteral("checking"), QStringLiteral("notInstalled"), QStringLiteral("stopped"),
                           QStringLiteral("starting"), QStringLiteral("running")}
            .at(static_cast<int>(state));
    }

    /// An `orb` with these answers to status, start and stop.
    void addOrb(const QString &status, const QString &start = QStringLiteral(":"),
                const QString &stop = QStringLiteral(":"))
    {
        tools.addTool(QStringLiteral("orb"), QStringLiteral("case $1 in\nstatus) ") + status +
                                                 QStringLiteral(";;\nstart) ") + start + QStringLiteral(";;\nstop) ") +
                                                 stop + QStringLiteral(";;\nesac"));
    }

    bool waitUntilFree()
    {
        return waitUntil([this] { return !setup.busy(); });
    }

    QStringList calls() const { return tools.calls(QStringLiteral("orb")); }

    TestTools tools;
    const SetupTimeLimits limits{
        .status = farLimit, .start = farLimit, .stop = farLimit, .install = farLimit, .pollInterval = 0.01};
    SetupController setup{limits};
    QStringList order;
};

inline const QString running = QStringLiteral("echo Running");
inline const QString stopped = QStringLiteral("echo Stopped");
