#pragma once

// The tool that runs now for an operation of several steps, and the user's wish to stop that operation. Main thread.
//
// A stop ends the tool that runs; whether the operation goes on is for its owner to decide, who asks when a tool has
// ended. Destroyed while a tool runs, it leaves the tool to itself.

#include "OrbCLI/OrbCLI.h"

#include <QObject>

class CurrentTool : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// A new operation begins, which nobody has asked to stop.
    void beginOperation() { m_isStopRequested = false; }

    /// Runs the tool of one step as OrbCLI::streamAsync does; one at a time. When a stop was requested before, the tool
    /// is asked to terminate as soon as it has started.
    QCoro::Task<OrbCLI::StreamResult> stream(QString tool, QStringList arguments, std::optional<QString> input,
                                             std::optional<double> timeLimit, OutputHandler onOutput);

    /// The tool that runs now; null between two steps.
    const ProcessHandlePointer &handle() const { return m_handle; }

    /// Notes that the user wants the operation to stop, and asks the tool that runs now to terminate. One that has
    /// ended already, and is waited for because something that it started holds its pipes, is not waited for any more.
    void requestStop();
    bool isStopRequested() const { return m_isStopRequested; }

private:
    ProcessHandlePointer m_handle;
    bool m_isStopRequested = false;
};
