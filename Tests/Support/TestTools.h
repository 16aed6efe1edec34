#pragma once

// Outside tools for tests: real executable files in temporary tool directories, which the code under test finds in
// place of the fixed ones.

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// Replaces the three tool directories (and the two places of brew) by temporary ones for as long as it lives. One at
/// a time.
class TestTools
{
public:
    TestTools();
    ~TestTools();

    TestTools(const TestTools &) = delete;
    TestTools &operator=(const TestTools &) = delete;

    /// The path of one of the three directories, 0 to 2.
    QString directory(int index) const;

    /// A scratch path inside the temporary folder, outside the tool directories.
    QString path(const QString &name) const;

    /// Writes a `/bin/sh` script as an executable tool and returns its path. Every call of the tool appends one line
    /// per call to "NAME.calls": its arguments, each in <angle brackets>.
    QString addTool(const QString &name, const QString &body, int directoryIndex = 0);

    /// Makes the tool name another interpreter in its first line: a missing one gives a tool that is found but cannot
    /// be started.
    void setInterpreter(const QString &name, const QString &interpreter, int directoryIndex = 0);

    /// Writes a file outside the tool directories, for tools to read or to wait for, and returns its path.
    QString addFile(const QString &name, const QByteArray &content = {});

    /// Script text that goes on until the file `name` exists, and looks for it after each pause, in seconds.
    QString waitForFile(const QString &name, double pause = 0.01) const;

    /// Script text that tells `hasFile(name)`: a tool's call is recorded before its body begins, and so before its
    /// traps are set.
    QString tellByFile(const QString &name) const;
    bool hasFile(const QString &name) const;

    /// Script text that goes on until the tool is asked to terminate, and then ends it with `status`.
    static QString untilTerminated(int status);

    /// The calls recorded so far, oldest first: "<list><-f><json>".
    QStringList calls(const QString &name) const;

    /// Removes the tool.
    void removeTool(const QString &name, int directoryIndex = 0);

private:
    QTemporaryDir m_folder;
};
