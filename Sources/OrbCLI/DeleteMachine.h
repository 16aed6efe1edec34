#pragma once

#include "OrbCLI/CLIResult.h"

#include <QString>
#include <qcorotask.h>

namespace OrbCLI
{

/// Deletes the machine `name`: first forced, and when that fails once more without force, answering the tool's
/// question with "y". Returns the result of the last attempt. `timeLimit` is in seconds and holds for each attempt.
/// Main thread.
QCoro::Task<CLIResult> deleteMachine(QString orb, QString name, double timeLimit);

/// Begins to delete the machine `name`, forced, and leaves it at that: the deletion outlives this program, and nobody
/// hears how it ends. Waits for nothing, and works without an event loop. Any thread.
void beginDeletion(const QString &orb, const QString &name);

} // namespace OrbCLI
