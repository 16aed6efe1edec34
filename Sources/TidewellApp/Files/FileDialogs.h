#pragma once

// What opening and saving have in common.

#include <QFileDialog>

namespace FileDialogs
{

/// A dialog for one file, over the window, which is shown for it; gone once it was answered. On macOS the window may be
/// hidden, with nothing to hold the dialog or to show what came of it. The caller opens it.
QFileDialog *make(QWidget &window, const QString &title, QFileDialog::AcceptMode mode);

/// The file's name in a sentence: “name”.
QString quotedName(const QString &path);

} // namespace FileDialogs
