#pragma once

// Scripts in files: reading one into the editor and writing the editor's text. A file that cannot be read, written or
// understood ends as a sentence over the window, and neither the script nor the file is touched.

#include <QString>

#include <optional>

namespace ScriptFiles
{

/// Larger files are no scripts: bytes.
constexpr qint64 largestScript = 5'000'000;

/// What came of reading a file: its text with line feeds only, or why it was refused, as a sentence.
struct Reading {
    QString text;
    std::optional<QString> refusal;
};

/// Reads a text of up to `largestScript` bytes in UTF-8. Blocks for as long as the file system does.
Reading read(const QString &path);

/// Writes the text as UTF-8 beside the file and renames it into place; a sentence when that failed, and then the old
/// file is as it was. A file that is new can be executed by its owner.
std::optional<QString> write(const QString &path, const QString &text);

} // namespace ScriptFiles
