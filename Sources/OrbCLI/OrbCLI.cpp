#include "OrbCLI/OrbCLI.h"

#include "OrbCLI/ToolLocation.h"
#include "Process/ProcessEngine.h"

#include <coroutine>
#include <map>
#include <utility>
#include <vector>

namespace
{

/// Suspends one coroutine until a callback supplies a value: a local of that coroutine, awaited once (`co_await
/// end.value()`) and resumed once, both on one thread. The coroutine stays alive meanwhile because it waits here.
template <typename Value>
class Continuation
{
public:
    Continuation() = default;
    Continuation(const Continuation &) = delete;
    Continuation &operator=(const Continuation &) = delete;

    void resume(Value value)
    {
        m_value = std::move(value);
        if (m_waiting)
            m_waiting.resume();
    }

    /// What is awaited only points here: a compiler may await a copy of it.
    struct Awaiter {
        Continuation *continuation;

        bool await_ready() const { return continuation->m_value.has_value(); }
        void await_suspend(std::coroutine_handle<> waiting) const { continuation->m_waiting = waiting; }
        Value await_resume() const { return std::move(*continuation->m_value); }
    };
    Awaiter value() { return Awaiter{this}; }

private:
    std::optional<Value> m_value;
    std::coroutine_handle<> m_waiting;
};

/// So many of one question's tools may hang, deaf to their termination, before it is asked no more.
constexpr std::size_t mostLeftBehind = 4;

/// What polling left behind and still runs, of one question: a tool and its arguments. Main thread.
std::vector<ProcessHandlePointer> &leftBehind(const QStringList &question)
{
    static std::map<QStringList, std::vector<ProcessHandlePointer>> questions;
    std::vector<ProcessHandlePointer> &handles = questions[question];
    std::erase_if(handles, [](const ProcessHandlePointer &handle) { return !handle->isRunning(); });
    return handles;
}

} // namespace

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

QCoro::Task<CLIResult> OrbCLI::run(QString tool, QStringList arguments, std::optional<QString> input, double timeLimit,
                                   OutputNeed need, std::optional<double> graceTime)
{
    const QStringList question = QStringList(tool) + arguments;
    if (graceTime && leftBehind(question).size() >= mostLeftBehind) {
        CLIResult unasked;
        unasked.timedOut = true;
        co_return unasked;
    }
    Continuation<CLIResult> end;
    CollectedOutput output(need);
    CollectedOutput errorOutput(endOfLog); // which explains, whatever the output is needed for
    ProcessHandlePointer handle;
    const auto onOutput = [&](QUtf8StringView text, bool isError) {
        if ((isError ? errorOutput : output).append(text))
            return;
        handle->cancel();
        handle->closeOutput();
    };
    const auto onExit = [&](int status, const ProcessHandlePointer &ended) {
        end.resume({status, output.text(), errorOutput.text(), ended->timedOut(), ended->launchError(),
                    output.isTooMuch() ? std::optional(need.most) : std::nullopt});
    };
    handle = ProcessEngine::instance().launch({.tool = tool,
                                               .arguments = arguments,
                                               .environment = environment(),
                                               .input = input,
                                               .timeLimit = timeLimit,
                                               .graceTime = graceTime,
                                               .onOutput = onOutput,
                                               .onExit = onExit,
                                               .collectsOutput = true});
    CLIResult result = co_await end.value();
    if (graceTime && handle->isRunning())
        leftBehind(question).push_back(handle);
    co_return result;
}
