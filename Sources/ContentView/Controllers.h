#pragma once

class SetupController;
class MachineStore;
class RunController;
class HistoryStore;
class ContainerStore;

/// The five shared controllers, handed to every screen; none creates one of its own. They must outlive every
/// screen.
struct Controllers {
    SetupController &setup;
    MachineStore &machines;
    RunController &run;
    HistoryStore &history;
    ContainerStore &containers;
};
