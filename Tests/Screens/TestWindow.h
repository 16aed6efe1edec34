#pragma once

// The window's content with five real controllers and a fake OrbStack, on screen.

#include "ContainerStore/ContainerStore.h"
#include "ContentView/ContentView.h"
#include "HistoryStore/HistoryStore.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "Screens/ByName.h"
#include "Screens/FakeOrbStack.h"
#include "SetupController/SetupController.h"
#include "Support/Waiting.h"

#include <QSettings>

#include <chrono>
#include <memory>

class TestWindow
{
public:
    explicit TestWindow(bool macSupported = true, RunTimeLimits limitsOfRuns = {}, const TextStorage &storage = {})
        : setup(SetupTimeLimits{}, macSupported),
          run(limitsOfRuns, storage),
          history(orbStack.tools().path(QStringLiteral("support")))
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, orbStack.tools().path(QStringLiteral("set")));
        QSettings().clear();
    }

    ~TestWindow()
    {
        run.stop();
        setup.cancel();
        waitUntil([this] { return !run.isRunning() && !setup.busy(); });
    }

    TestWindow(const TestWindow &) = delete;
    TestWindow &operator=(const TestWindow &) = delete;

    Controllers controllers() { return {setup, machines, run, history, containers}; }

    /// Shows the window; its polling begins.
    ContentView &show(std::chrono::milliseconds pollInterval = std::chrono::hours(1))
    {
        m_content = std::make_unique<ContentView>(controllers(), nullptr, pollInterval);
        m_content->show();
        m_content->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_content.get()));
        return *m_content;
    }

    /// Shows the window over a running OrbStack with these machines, and waits until it has found them.
    ContentView &showRunning(const QStringList &names)
    {
        orbStack.setRunning(true);
        orbStack.setMachines(names);
        ContentView &content = show();
        EXPECT_TRUE(waitUntil([this, &names] {
            return setup.state() == OrbState::running && machines.machines().size() == names.size() && hasListed();
        }));
        return content;
    }

    ContentView &content() { return *m_content; }

    void close() { m_content.reset(); }

    FakeOrbStack orbStack;
    SetupController setup;
    MachineStore machines;
    RunController run;
    HistoryStore history;
    ContainerStore containers;

private:
    /// Both the round and the watcher of the state list everything once.
    bool hasListed() { return orbStack.tools().calls(QStringLiteral("docker")).size() >= 2; }

    std::unique_ptr<ContentView> m_content;
};
