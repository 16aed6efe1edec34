#pragma once

// The text form of the history: a compact JSON array, members in their fixed order, dates in UTC and whole seconds
// ("2026-03-01T14:05:09Z"), an absent exit code left out. Pure functions.

#include "HistoryStore/HistoryEntry.h"

#include <QByteArray>
#include <QList>

#include <optional>

namespace HistoryFile
{

/// Bytes; what is larger is no history, and would take minutes and gigabytes to find out.
constexpr qsizetype largestSize = qsizetype{64} * 1024 * 1024;

/// So many runs are kept.
constexpr qsizetype mostEntries = 50;

/// The file's content for these entries. An entry with which it would be larger than `most` is left out.
QByteArray encode(const QList<HistoryEntry> &entries, qsizetype most = largestSize);

/// All entries, or nothing when any part of the content is not in the form above; "exitCode" may be missing or null.
std::optional<QList<HistoryEntry>> decode(const QByteArray &content);

/// What becomes of `ours` when another instance has made `theirs` of the file that both knew as `known`: entries that
/// the other added come in, newest first, those that it deleted go, and what was deleted here does not come back. The
/// newest 50 of them, when there are more.
QList<HistoryEntry> merged(const QList<HistoryEntry> &ours, const QList<HistoryEntry> &known,
                           const QList<HistoryEntry> &theirs);

} // namespace HistoryFile
