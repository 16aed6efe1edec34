#pragma once

// A question or a notice over the window. It blocks the window but not the program, is gone with its parent, and gives
// the focus back to where it was.

#include <QString>

#include <functional>

class QMessageBox;
class QWidget;

namespace Alert
{

enum class Kind {
    ordinary,    ///< Return accepts
    destructive, ///< accepting takes away or ends what cannot be brought back, so Return cancels
};

/// Opens the alert and returns at once. Both texts are plain. `accepted` is called when the user presses `acceptLabel`;
/// `cancelLabel`, Escape and closing the alert do nothing more than close it. What `accepted` reads must outlive
/// `parent`.
QMessageBox *open(QWidget *parent, const QString &title, const QString &message, const QString &acceptLabel,
                  const QString &cancelLabel, const std::function<void()> &accepted, Kind kind = Kind::ordinary);

/// Opens a notice, with the one button "OK", and returns at once. Both texts are plain.
QMessageBox *tell(QWidget *parent, const QString &title, const QString &message);

} // namespace Alert
