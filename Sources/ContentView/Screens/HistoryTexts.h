#pragma once

// What the History screen says about an entry. Pure functions.

#include "HistoryStore/HistoryEntry.h"

#include <QString>

namespace HistoryTexts
{

/// How the run ended: "exit 127", or the note of a run without an exit status, or "no exit status".
QString statusText(const HistoryEntry &entry);

/// The first line of a command that is not empty; the whole command when it has none.
QString firstLine(const QString &command);

} // namespace HistoryTexts
