#pragma once

// The application's own window with its five controllers over an OrbStack whose one machine is this host, driven as a
// user does it.

#include "ContainerStore/ContainerStore.h"
#include "ContentView/ContentView.h"
#include "ContentView/Screens/Run/ScriptEditor.h"
#include "HistoryStore/HistoryStore.h"
#include "MachineStore/MachineStore.h"
#include "OutputPane/OutputPane.h"
#include "RunController/RunController.h"
#include "Screens/ByName.h"
#include "Screens/FakeOrbStack.h"
#include "SetupController/SetupController.h"
#include "Support/Waiting.h"
#include "TidewellApp/IgnoredSignals.h"
#include "TidewellApp/MainWindow.h"

#include <QAbstractButton>
#include <QSettings>

#include <cstdio>
#include <cstdlib>

class RealWindow
{
public:
    RealWindow() : m_history(m_orbStack.tools().path(QStringLiteral("support")))
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           m_orbStack.tools().path(QStringLiteral("settings")));
        m_orbStack.setRunning(true);
        m_orbStack.setMachines({QStringLiteral("box")});
        m_window.show();
        type(QStringLiteral("true"));
        expect(waitUntil([this] { return ByName::isOffered(m_window, QStringLiteral("Run")); }));
    }

    ~RealWindow()
    {
        m_run.stop();
        waitUntil([this] { return !m_run.isRunning(); });
    }

    RealWindow(const RealWindow &) = delete;
    RealWindow &operator=(const RealWindow &) = delete;

    MainWindow &window() { return m_window; }
    ContentView &content() { return m_window.content(); }
    OutputPane &pane() { return *m_window.findChild<OutputPane *>(); }
    RunController &run() { return m_run; }
    TestTools &tools() { return m_orbStack.tools(); }

    void type(const QString &script)
    {
        auto *const editor = m_window.findChild<ScriptEditor *>();
        editor->selectAll();
        QTest::keyClicks(editor, script);
    }

    void press(const QString &name)
    {
        auto *const button = ByName::find<QAbstractButton>(m_window, name);
        expect(button != nullptr && button->isEnabled());
        QTest::mouseClick(button, Qt::LeftButton);
    }

    /// Lets a script print that many bytes and then go on without a word, so that the transcript holds all of them: the
    /// line at a run's end, of another kind, makes it drop what is too much.
    void fill(const QString &script, qint64 bytes)
    {
        const TextStore::Position allOfIt = m_run.transcript().end() + bytes;
        type(QStringLiteral("(%1); exec sleep 100000").arg(script));
        press(QStringLiteral("Run"));
        expect(waitUntil([this, allOfIt] { return m_run.transcript().end() >= allOfIt; }));
        QTest::qWait(200);
        expect(showsEnd() && m_run.transcript().end() - m_run.transcript().begin() >= bytes);
    }

    /// Whether the pane stands at the end of what arrived, and the end is in view.
    bool showsEnd()
    {
        const QRect last = pane().characterRect(m_run.transcript().end() - 1);
        return !last.isEmpty() && pane().viewport()->rect().contains(last);
    }

    /// A figure of something that did not happen is worth nothing.
    static void expect(bool condition)
    {
        if (condition)
            return;
        std::fputs("the window did not do what was asked of it\n", stderr);
        std::abort();
    }

private:
    const IgnoredSignals m_ignoredSignals;
    FakeOrbStack m_orbStack;
    SetupController m_setup{SetupTimeLimits{}, true};
    MachineStore m_machines;
    RunController m_run;
    HistoryStore m_history;
    ContainerStore m_containers;
    MainWindow m_window{Controllers{m_setup, m_machines, m_run, m_history, m_containers}};
};
