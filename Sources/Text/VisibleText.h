#pragma once

// Text from outside, made safe to look at. Pure functions.

#include <QString>

namespace VisibleText
{

/// The text in one line in which nothing is disguised: control characters, direction marks and other characters without
/// a shape of their own are written out, as in "⟨U+202E⟩", unless they do what they are for (the joiners in an emoji or
/// a Persian word); line breaks and tabs become blanks.
QString oneLine(const QString &text);

/// The text, or of one with more than `longest` UTF-16 units its beginning and an ellipsis. Halves no character.
QString elidedEnd(const QString &text, qsizetype longest);

/// The same with as much of its end as of its beginning around the ellipsis.
QString elidedMiddle(const QString &text, qsizetype longest);

/// The text for a window's title, in which the toolkit takes "[*]" for the place of a mark of its own.
QString windowTitle(const QString &text);

/// The text as a tool tip shows it: never read as markup, at most about a thousand characters.
QString toolTip(const QString &text);

/// The text as the accessible name of what shows it: at most about five hundred characters.
QString accessibleName(const QString &text);

} // namespace VisibleText
