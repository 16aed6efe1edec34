#pragma once

// What all tests of the machine store share: a fake `orb` that lists one machine.

#include "MachineStore/MachineStore.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

/// A store over fake tools; limits are far away unless a test shortens them.
class MachineStoreTest : public testing::Test
{
protected:
    /// An `orb` that lists one machine as JSON and does `others` for every other command ($1 being its name).
    void addOrb(const QString &others = {},
                const QString &json = QStringLiteral("[{\"name\":\"box\",\"state\":\"running\"}]"))
    {
        tools.addTool(QStringLiteral("orb"), QStringLiteral("if [ \"$1\" = list ]; then printf '%s' '") + json +
                                                 QStringLiteral("'; exit 0; fi\n") + others);
    }

    /// Waits until the operation is over and the refresh after it has changed the list.
    bool waitUntilDone()
    {
        return waitUntil([this] { return !store.busy() && !store.machines().isEmpty(); });
    }

    QStringList calls() const { return tools.calls(QStringLiteral("orb")); }

    TestTools tools;
    MachineStore store{
        MachineTimeLimits{.list = farLimit, .simple = farLimit, .deletion = farLimit, .creation = farLimit}};
};

inline const QList<Machine> box{{QStringLiteral("box"), QStringLiteral("running"), QString(), QString()}};
