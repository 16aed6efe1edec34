#pragma once

// Small controls in the form in which every screen uses them.

#include <QLineEdit>
#include <QPushButton>

namespace Controls
{

/// A stretch factor in a row: up to its greatest width before anything is left for the row's empty end.
inline constexpr int mostOfTheRow = 100;

/// A button named by its label; `description` tells what it acts on where the label alone does not ("Stop OrbStack").
QPushButton *button(const QString &label, const QString &description, QWidget *parent);

/// A field for one line of text, named by its placeholder.
QLineEdit *textField(const QString &placeholder, QWidget *parent);

} // namespace Controls
