#pragma once

// What counts of a text that the user typed, and so whether there is any. Pure functions.

#include <QStringView>

namespace TrimmedText
{

/// What is typed into a field of one line, without the spaces of any width and the tabs at both its ends.
inline QStringView withoutSpacesAndTabs(QStringView text)
{
    const auto isSpaceOrTab = [](QChar character) {
        return character == u'\t' || character.category() == QChar::Separator_Space;
    };
    while (!text.isEmpty() && isSpaceOrTab(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isSpaceOrTab(text.back()))
        text.chop(1);
    return text;
}

/// A script, without the spaces, tabs and line breaks at both its ends.
inline QStringView withoutSpacesAndLineBreaks(QStringView text)
{
    return text.trimmed();
}

} // namespace TrimmedText
