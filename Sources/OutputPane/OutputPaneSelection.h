#pragma once

// What is selected in the output, and the caret. A selection grows from what was first taken hold of, a place or a
// whole word or line, to the caret; it is empty when both are one place.

#include "OutputPane/OutputPaneNavigation.h"

#include <algorithm>

class OutputPaneSelection
{
public:
    using Position = TextStore::Position;

    OutputCaret caret() const { return m_caret; }
    Position begin() const { return std::min(m_held.begin, m_caret.position); }
    Position end() const { return std::max(m_held.end, m_caret.position); }
    bool isEmpty() const { return begin() == end(); }

    /// Nothing is selected, the caret stands there.
    void moveTo(OutputCaret caret)
    {
        m_held = {caret.position, caret.position};
        m_caret = caret;
    }
    /// The range is selected and held, the caret stands at its end.
    void hold(OutputRange range)
    {
        m_held = range;
        m_caret = {range.end, false};
    }
    /// The selection goes from what is held to the caret.
    void extendTo(OutputCaret caret) { m_caret = caret; }
    /// The selection goes from what is held to the far end of the range.
    void extendTo(OutputRange range) { m_caret = {range.begin < m_held.begin ? range.begin : range.end, false}; }
    /// Leaves out what lies outside the text.
    void keepWithin(Position textBegin, Position textEnd)
    {
        m_held = {std::clamp(m_held.begin, textBegin, textEnd), std::clamp(m_held.end, textBegin, textEnd)};
        m_caret.position = std::clamp(m_caret.position, textBegin, textEnd);
    }

private:
    OutputRange m_held;
    OutputCaret m_caret;
};
