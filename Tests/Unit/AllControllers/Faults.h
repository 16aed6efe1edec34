#pragma once

// The ways in which a tool can fail, tools that fail so at one of their calls, and what their caller then hears.

#include "OrbCLI/CLIResult.h"
#include "Support/TestTools.h"

#include <QList>

/// What a tool came to that ended by itself.
CLIResult ended(int status, const QString &output = {}, const QString &errors = {});

struct Fault {
    const char *name = "none";
    /// What the tool does instead of its work, as a shell's words.
    QString body = QStringLiteral(":");
    CLIResult result;
    /// The file is gone, or may not be executed, from this call on.
    bool isMissing = false;
    /// It goes on until its time limit.
    bool hangs = false;
    /// The call works nevertheless.
    bool works = false;
};

/// Every way once.
const QList<Fault> &allFaults();

/// `orb`, `docker` and `brew`, which work but for one call, counted over all of them.
class FaultyTools : public TestTools
{
public:
    /// From now on the call of this number fails, 1 being the next. `before` is what the tools do first of all, as
    /// shell's words.
    void failAt(int number, const Fault &fault, const QString &before = {});
    /// From now on every call works.
    void workAgain(const QString &before = {}) { failAt(0, {}, before); }

    /// A tool that ignores its termination was asked to terminate.
    bool wasAskedInVain() const;
    /// Lets such a tool end.
    void release();
};

/// The calls of one operation once more, as their caller hears of them.
class Replay
{
public:
    Replay(int number, const Fault &fault) : m_number(number), m_fault(fault) {}

    /// What the next call comes to where a working one comes to `working`.
    CLIResult next(const QString &tool, const CLIResult &working);

    /// Whether a tool can be found at this moment.
    bool isFound() const { return !m_fault.isMissing || m_calls + 1 < m_number; }
    /// Whether the time limits are short, and this call or one before used its own up.
    bool isLate() const { return m_fault.hangs && m_calls >= m_number; }

private:
    int m_number;
    const Fault &m_fault;
    int m_calls = 0;
};
