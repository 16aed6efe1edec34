#pragma once

// Every operation of every controller that uses a tool: how it is begun, what is to be seen after it, and what has to
// be seen there, told step by step.

#include "ContainerStore/ContainerStore.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "SetupController/SetupController.h"
#include "Unit/AllControllers/Faults.h"

#include <functional>

/// All controllers, with the same limit for every call of a tool.
struct AllControllers {
    /// Seconds; `start` is the limit for OrbStack's start as a whole.
    AllControllers(double limit, double start)
        : machines({.list = limit, .simple = limit, .deletion = limit, .creation = limit}),
          containers({.list = limit, .logs = limit, .action = limit, .run = limit}),
          setup({.status = limit, .start = start, .stop = limit, .install = limit, .pollInterval = 0.01}),
          run({.creation = limit, .script = limit, .deletion = limit})
    {
    }

    MachineStore machines;
    ContainerStore containers;
    SetupController setup;
    HistoryStore history{std::nullopt};
    RunController run;
};

struct Operation {
    const char *name;
    /// How many calls of a tool it makes where all work.
    int calls = 0;
    /// Begins it, and returns whether it is over.
    std::function<std::function<bool()>(AllControllers &)> begin;
    /// All that it may publish.
    std::function<QString(const AllControllers &)> told;
    /// What it has to publish.
    std::function<QString(Replay &)> expected;
    /// What the tools do before anything else.
    QString before{};
    /// It is begun again and again, without the user.
    bool isPolled = false;
};

const QList<Operation> &allOperations();
