#pragma once

// The type sizes of the window, derived from the system's font in the proportions that macOS uses: where that font has
// 13 points these are the sizes a Mac user knows, and a larger system font enlarges them all. Main thread only.

#include <QFont>

namespace Typography
{

/// The system's font as it is: running text, buttons, fields.
QFont body();
/// The size of body, bold: titles of rows and sections.
QFont headline();
/// A little smaller than body: sentences that explain.
QFont callout();
/// Small: second lines, warnings.
QFont caption();
/// The smallest text of the window.
QFont smallestCaption();
/// The system's font in its monospaced design; a point is one device-independent pixel, as everywhere in the window.
QFont monospaced(int points);

} // namespace Typography
