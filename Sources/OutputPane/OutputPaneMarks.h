#pragma once

// Which characters of the output belong to a match of what is being looked for, as far as they are in view. Looked up
// each time in the text as it is then, so nothing needs to be told of changes. Main thread only.

#include "Text/TextPattern.h"
#include "Transcript/TextView.h"

#include <vector>

class OutputPaneMarks
{
public:
    using Position = TextView::Position;

    /// Of a match, so many bytes outside the view are looked at: longer ones are not marked.
    static constexpr Position mostOutside = Position{32} * 1024;

    /// `text` must outlive the marks.
    explicit OutputPaneMarks(const TextView &text) : m_text(text) {}

    /// Marks this from now on; nothing with an empty pattern.
    void setPattern(const TextPattern &pattern) { m_pattern = pattern; }

    /// The matches of which something lies between two positions, in their order.
    std::vector<TextMatch> between(Position from, Position to) const;

private:
    const TextView &m_text;
    TextPattern m_pattern;
};
