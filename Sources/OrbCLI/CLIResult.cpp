#include "OrbCLI/CLIResult.h"

using namespace Qt::StringLiterals;

QString CLIResult::combined() const
{
    const QString output = stdout.trimmed();
    const QString errors = stderr.trimmed();
    if (output.isEmpty() || errors.isEmpty())
        return output + errors;
    return output + u'\n' + errors;
}

std::optional<QString> CLIResult::failure(const QString &command) const
{
    if (launchError)
        return launchError;
    // It may have timed out all the same, deaf to being stopped.
    if (stoppedAfter)
        return command + u" printed more than "_s + QString::number(*stoppedAfter / (qsizetype{1024} * 1024)) +
               u" MiB and was stopped."_s;
    if (timedOut)
        return command + u" timed out. Is OrbStack running?"_s;
    if (status != 0)
        return combined();
    return std::nullopt;
}
