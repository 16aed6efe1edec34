#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

/// Reads `bytes` by themselves as UTF-8. Nothing when they are valid as they stand; else a copy in which each malformed
/// or cut sequence (its longest part that could have begun a character) is U+FFFD. A leading U+FEFF is a character.
std::optional<QByteArray> repairedUtf8(QByteArrayView bytes);
