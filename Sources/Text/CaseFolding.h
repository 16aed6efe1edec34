#pragma once

// Full case folding as Unicode defines it: texts that differ in case alone become the same text. "Straße" and
// "STRASSE" are one that way, so a folded text may be longer or shorter than what it comes from. Pure.

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <vector>

namespace CaseFolding
{

/// A character that folds to several, or to one of another length: where both stand, in bytes.
struct Change {
    std::int64_t foldedBegin = 0;
    std::int64_t foldedEnd = 0;
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

/// Writes the folded form of valid UTF-8 in place of what `folded` held, and adds what changed its length to `changes`,
/// counted from the beginnings of both. Any thread.
void fold(QByteArrayView text, QByteArray &folded, std::vector<Change> &changes);

} // namespace CaseFolding
