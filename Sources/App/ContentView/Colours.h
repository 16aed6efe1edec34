#pragma once

// The colours that carry a meaning, as pure functions of a palette: dark tones on a light window, light tones on a dark
// one, each readable as text on the window's colour and on a pane. A widget asks again when its palette changes.

#include "RunController/OutputKind.h"

#include <QColor>

class QPalette;

namespace Colours
{

/// True when the palette's window is dark.
bool isDark(const QPalette &palette);

/// Text that matters most.
QColor primary(const QPalette &palette);
/// Dimmed text: captions, hints, progress.
QColor secondary(const QPalette &palette);
/// What an empty field asks for: the palette's own colour, unless it can hardly be told from the field. (Some dark
/// themes set every colour but this one, which is then a light theme's black.)
QColor placeholder(const QPalette &palette);

QColor red(const QPalette &palette);
QColor orange(const QPalette &palette);
QColor green(const QPalette &palette);
QColor purple(const QPalette &palette);

/// The text colour of a piece of output. `fail` is purple because red belongs to standard error alone.
QColor forKind(OutputKind kind, const QPalette &palette);

/// The translucent tint of the output pane and of log boxes over whatever lies beneath: black at 6 %, light and dark.
QColor paneTint();

} // namespace Colours
