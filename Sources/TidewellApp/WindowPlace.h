#pragma once

// The size and place of a window, from one time that it is open to the next, in the preferences.

#include <QSize>
#include <QString>

class QWidget;

namespace WindowPlace
{

/// Puts the window where it was when `remember` was last called with this key. The first time it gets the usual size,
/// as far as its screen has room for that; a window whose screen is gone comes onto one that is there.
void restore(QWidget &window, const QString &key, QSize usual);

void remember(const QWidget &window, const QString &key);

} // namespace WindowPlace
