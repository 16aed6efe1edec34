#pragma once

// Scripts in files: reading one into the editor and writing the editor's text. A file that cannot be read, written or
// understood ends as a sentence over the window, and neither the script nor the file is touched. What would not stand
// in the editor as it stands in the file is told or refused, so that no file comes back changed without a word.

#include <QString>

#include <optional>

namespace ScriptFiles
{

/// Larger files are no scripts: bytes.
constexpr qint64 largestScript = 5'000'000;

/// What came of reading a file: its text with line feeds only, and how that differs from the file, if it does; or why
/// it was refused. Sentences.
struct Reading {
    QString text;
    std::optional<QString> change;
    std::optional<QString> refusal;
};

/// Reads a text of up to `largestScript` bytes in UTF-8. Blocks for as long as the file system does.
Reading read(const QString &path);

/// Writes the text, which must be one that UTF-8 can hold, beside the file and renames it into place; a sentence when
/// that failed, and then the old file is as it was. A file that is new can be executed by its owner.
std::optional<QString> write(const QString &path, const QString &text);

} // namespace ScriptFiles
