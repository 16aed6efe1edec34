#pragma once

// What the script editor takes from the clipboard and from what is dropped on it. Pure functions.

#include <QString>

class QMimeData;

namespace DroppedText
{

bool isIn(const QMimeData &source);

/// Files by their paths, as words for a shell; anything else as its plain text.
QString of(const QMimeData &source);

} // namespace DroppedText
