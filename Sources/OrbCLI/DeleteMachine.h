#pragma once

#include "OrbCLI/CLIResult.h"

#include <QString>
#include <qcorotask.h>

namespace OrbCLI
{

/// Deletes the machine `name`: first forced, and when that fails once more without force, answering the tool's
/// question with "y". Returns the result of the last attempt. `timeLimit` is in seconds and holds for each attempt.
/// Main thread.
QCoro::Task<CLIResult> deleteMachine(QString orb, QString name, double timeLimit = 120);

} // namespace OrbCLI
