#include "OrbCLI/CurrentTool.h"

#include <QPointer>

QCoro::Task<OrbCLI::StreamResult> CurrentTool::stream(QString tool, QStringList arguments, std::optional<QString> input,
                                                      std::optional<double> timeLimit, OutputHandler onOutput)
{
    const QPointer<CurrentTool> self(this);
    // Handlers stand outside of awaited expressions: GCC 12 destroys twice what a lambda holds inside one.
    const OrbCLI::StartHandler onStart = [this](const ProcessHandlePointer &handle) {
        m_handle = handle;
        if (m_isStopRequested)
            m_handle->cancel();
    };
    const OrbCLI::StreamResult result =
        co_await OrbCLI::streamAsync(tool, arguments, input, timeLimit, onStart, onOutput);
    if (self)
        m_handle.reset();
    co_return result;
}

void CurrentTool::requestStop()
{
    m_isStopRequested = true;
    if (!m_handle)
        return;
    if (m_handle->isRunning())
        m_handle->cancel();
    else
        m_handle->waitNoLonger();
}
