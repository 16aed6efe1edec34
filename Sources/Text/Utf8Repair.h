#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace Utf8Repair
{

/// Reads `bytes` by themselves as UTF-8. Nothing when they are valid as they stand; else a copy in which each malformed
/// or cut sequence (its longest part that could have begun a character) is U+FFFD. A leading U+FEFF is a character.
/// Any thread.
std::optional<QByteArray> repaired(QByteArrayView bytes);

/// The same for who repairs again and again: the copy is the first so many bytes of `room`, which is made anew where it
/// may be too small.
std::optional<qsizetype> repairInto(QByteArray &room, QByteArrayView bytes);

} // namespace Utf8Repair
