#pragma once

// Runs an outside tool as a child process: an argument list, never a shell; the environment of ToolLocation.h; optional
// standard input; an optional time limit after which the child gets the termination signal, once. It is never killed,
// and one that ignores the signal is waited for; but what is polled may be left behind, so that polling goes on.
//
// Three entrances to one engine: stream (callbacks), streamAsync (awaitable, output streamed) and run (awaitable,
// output collected). Output arrives on the main thread as chunks of UTF-8 text, decoded chunk by chunk: whatever is
// malformed in a chunk, also a character cut by its edge, becomes U+FFFD. The end is reported once, after the last
// chunk, when the child has exited and both its pipes are closed, so a grandchild that holds a pipe delays it: for
// good, unless the child is polled, or the user asks once more to stop it.
//
// Nothing is thrown and nothing fails silently: a tool that cannot be started is one line of error output
// ("Could not start orb: …") and status -1.

#include "OrbCLI/CLIResult.h"
#include "OrbCLI/CollectedOutput.h"
#include "Process/Launch.h"

#include <QString>
#include <QStringList>
#include <qcorotask.h>

#include <functional>
#include <optional>

namespace OrbCLI
{

using StartHandler = std::function<void(const ProcessHandlePointer &handle)>;

struct StreamResult {
    int status = -1;
    bool timedOut = false;
};

/// Starts `tool` and returns its handle at once, before any output. Without `input` the child reads the null device;
/// `timeLimit` is in seconds, none for no limit. Any thread.
ProcessHandlePointer stream(const QString &tool, const QStringList &arguments, const std::optional<QString> &input,
                            std::optional<double> timeLimit, OutputHandler onOutput, ExitHandler onExit);

/// Like stream, and resumes its caller at the child's end. `onStart` is called once, before any output. Main thread.
QCoro::Task<StreamResult> streamAsync(QString tool, QStringList arguments, std::optional<QString> input,
                                      std::optional<double> timeLimit, StartHandler onStart, OutputHandler onOutput);

/// For `run`, by whoever asks the same again and again.
inline constexpr double pollingGraceTime = 10;

/// Runs `tool` to its end and returns what it printed: its output as far as it is needed, of its errors the end. A tool
/// that ignores its time limit, or whose pipes are held beyond it, is left behind after `graceTime`, in seconds; none
/// to wait for it. While four hang that were left behind of the same tool and arguments, a fifth is not started but
/// counts as timed out. Main thread.
QCoro::Task<CLIResult> run(QString tool, QStringList arguments, std::optional<QString> input, double timeLimit,
                           OutputNeed need = wholeList, std::optional<double> graceTime = std::nullopt);

} // namespace OrbCLI
