#pragma once

// The application: its five shared controllers, its one window, and how both end.

#include "ContainerStore/ContainerStore.h"
#include "ContentView/Controllers.h"
#include "HistoryStore/HistoryStore.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "SetupController/SetupController.h"
#include "TidewellApp/FieldFocus.h"
#include "TidewellApp/IgnoredSignals.h"
#include "TidewellApp/Quitting/AbruptExit.h"
#include "TidewellApp/Quitting/QuitGuard.h"
#include "TidewellApp/Quitting/TerminationSignals.h"

#include <memory>

class MainWindow;

class TidewellApp
{
public:
    /// Creates everything and shows nothing. There must be a QApplication; `closing` is the platform's habit.
    explicit TidewellApp(QuitGuard::Closing closing = QuitGuard::platformClosing());
    ~TidewellApp();

    TidewellApp(const TidewellApp &) = delete;
    TidewellApp &operator=(const TidewellApp &) = delete;

    Controllers controllers();
    MainWindow &window() { return *m_window; }
    const TerminationSignals &terminationSignals() const { return m_terminationSignals; }

private:
    const IgnoredSignals m_ignoredSignals;
    FieldFocus m_fieldFocus;
    SetupController m_setup;
    MachineStore m_machines;
    RunController m_run;
    HistoryStore m_history;
    ContainerStore m_containers;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<QuitGuard> m_quitGuard;
    TerminationSignals m_terminationSignals;
    const AbruptExit m_abruptExit;
};
