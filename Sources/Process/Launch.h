#pragma once

// All that the process engine has to know of a child that it is to start. A plain value.

#include "Process/ProcessHandle.h"

#include <QString>
#include <QStringList>
#include <QUtf8StringView>

#include <functional>
#include <map>
#include <optional>
#include <string>

/// Called on the main thread for each chunk; the view is valid during the call only. `isError` tells standard error
/// (and the launch-failure line) from standard output.
using OutputHandler = std::function<void(QUtf8StringView text, bool isError)>;

/// Called on the main thread exactly once, after the last chunk.
using ExitHandler = std::function<void(int status, const ProcessHandlePointer &handle)>;

struct Launch {
    /// The path of an executable file.
    QString tool;
    QStringList arguments;
    /// As bytes, because a variable need not be valid text.
    std::map<std::string, std::string> environment;
    /// What the child reads; without it, the null device.
    std::optional<QString> input;
    /// Seconds, after which the child is asked to terminate; none for no limit.
    std::optional<double> timeLimit;
    /// Seconds beyond its limit that a child which was asked to terminate, or whoever holds the pipes of one that has
    /// exited, has left; then it is left behind. None for a child that is waited for however long it goes on.
    std::optional<double> graceTime = std::nullopt;
    OutputHandler onOutput;
    ExitHandler onExit;
    /// The caller collects the output: it may be delivered all at once, with the end.
    bool collectsOutput = false;
};
