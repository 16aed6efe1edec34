#include "OrbCLI/OrbCLI.h"

#include "OrbCLI/Continuation.h"
#include "OrbCLI/ToolLocation.h"
#include "Process/ProcessEngine.h"
#include "Text/Utf8.h"

#include <utility>

ProcessHandlePointer OrbCLI::stream(const QString &tool, const QStringList &arguments,
                                    const std::optional<QString> &input, std::optional<double> timeLimit,
                                    OutputHandler onOutput, ExitHandler onExit)
{
    return ProcessEngine::instance().launch({.tool = tool,
                                             .arguments = arguments,
                                             .environment = environment(),
                                             .input = input,
                                             .timeLimit = timeLimit,
                                             .onOutput = std::move(onOutput),
                                             .onExit = std::move(onExit)});
}

QCoro::Task<OrbCLI::StreamResult> OrbCLI::streamAsync(QString tool, QStringList arguments, std::optional<QString> input,
                                                      std::optional<double> timeLimit, StartHandler onStart,
                                                      OutputHandler onOutput)
{
    Continuation<StreamResult> end;
    const auto onExit = [&end](int status, const ProcessHandlePointer &handle) {
        end.resume({status, handle->timedOut()});
    };
    const ProcessHandlePointer handle = stream(tool, arguments, input, timeLimit, std::move(onOutput), onExit);
    if (onStart)
        onStart(handle);
    co_return co_await end.value();
}

QCoro::Task<CLIResult> OrbCLI::run(QString tool, QStringList arguments, std::optional<QString> input, double timeLimit)
{
    Continuation<CLIResult> end;
    QByteArray output;
    QByteArray errorOutput;
    const auto onOutput = [&output, &errorOutput](QUtf8StringView text, bool isError) {
        (isError ? errorOutput : output).append(QByteArrayView(text.data(), text.size()));
    };
    const auto onExit = [&](int status, const ProcessHandlePointer &handle) {
        end.resume(
            {status, Utf8::toQString(output), Utf8::toQString(errorOutput), handle->timedOut(), handle->launchError()});
    };
    ProcessEngine::instance().launch({.tool = tool,
                                      .arguments = arguments,
                                      .environment = environment(),
                                      .input = input,
                                      .timeLimit = timeLimit,
                                      .onOutput = onOutput,
                                      .onExit = onExit,
                                      .collectsOutput = true});
    co_return co_await end.value();
}
