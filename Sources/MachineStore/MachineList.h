#pragma once

// Readers of what `orb list` prints. Pure functions: nothing is sorted, filtered or reported; a record that cannot be
// read is skipped.

#include "MachineStore/Machine.h"

#include <QList>
#include <QString>

#include <optional>

namespace MachineList
{

/// Reads `orb list -f json`; nothing when the text is not a JSON array. A record may be flat or stand under "record".
std::optional<QList<Machine>> parseMachinesJson(const QString &json);

/// Reads the plain table of `orb list`: columns parted by blanks, the heading line skipped.
QList<Machine> parseMachinesText(const QString &text);

} // namespace MachineList
