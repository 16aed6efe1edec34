#pragma once

// The text form of the history: a compact JSON array, members in their fixed order, dates in UTC and whole seconds
// ("2026-03-01T14:05:09Z"), an absent exit code left out. Pure functions.

#include "HistoryStore/HistoryEntry.h"

#include <QByteArray>
#include <QList>

#include <optional>

namespace HistoryFile
{

/// The file's content for these entries.
QByteArray encode(const QList<HistoryEntry> &entries);

/// All entries, or nothing when any part of the content is not in the form above; "exitCode" may be missing or null.
std::optional<QList<HistoryEntry>> decode(const QByteArray &content);

} // namespace HistoryFile
