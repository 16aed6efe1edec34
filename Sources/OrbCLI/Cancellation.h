#pragma once

#include "Process/ProcessHandle.h"

/// The user's wish to end an operation, and the child process that runs for it now. A wish that comes while there is no
/// child ends the next one as soon as it starts. Main thread.
class Cancellation
{
public:
    bool isRequested() const { return m_isRequested; }

    /// Notes the wish and asks the current child, if any, to terminate.
    void request()
    {
        m_isRequested = true;
        if (m_child)
            m_child->cancel();
    }

    /// A new operation begins, which nobody has cancelled.
    void reset() { m_isRequested = false; }

    void childStarted(const ProcessHandlePointer &child)
    {
        m_child = child;
        if (m_isRequested)
            m_child->cancel();
    }

    /// The child that runs now; null when there is none.
    const ProcessHandlePointer &child() const { return m_child; }

    void childEnded() { m_child.reset(); }

private:
    ProcessHandlePointer m_child;
    bool m_isRequested = false;
};
