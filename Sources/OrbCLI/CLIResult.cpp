#include "OrbCLI/CLIResult.h"

QString CLIResult::combined() const
{
    const QString output = stdout.trimmed();
    const QString errors = stderr.trimmed();
    if (output.isEmpty() || errors.isEmpty())
        return output + errors;
    return output + u'\n' + errors;
}
