#pragma once

// The output of a run on its way into a file.

#include "Transcript/TextSnapshot.h"

#include <QString>

#include <atomic>
#include <optional>

namespace OutputFile
{

/// What two threads say to each other about a file that is being written.
struct Progress {
    /// Bytes of the text that have been dealt with.
    std::atomic<TextSnapshot::Position> done = 0;
    /// Set to end the writing, with the old file as it was.
    std::atomic<bool> isCancelled = false;
};

/// Writes the text as UTF-8 beside the file and renames it into place; a sentence when that failed. Then, and when it
/// was cancelled, the old file is as it was. Blocks as long as reading the text and the file system take: any thread.
std::optional<QString> write(const QString &path, const TextSnapshot &text, Progress &progress);

} // namespace OutputFile
