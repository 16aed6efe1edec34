#pragma once

// The caret in the output, and the selection that grows from what was first taken hold of, a place or a whole word or
// line, to the caret; it is empty when both are one place. Moved by the platform's standard keys or from outside.
//
// A caret that stands at the end of the text goes with the end as the text grows.

#include "OutputPane/OutputPaneNavigation.h"

#include <algorithm>
#include <optional>

class QKeyEvent;

class OutputPaneCursor
{
public:
    using Position = TextView::Position;

    /// Both must outlive the cursor.
    OutputPaneCursor(OutputPaneRows &rows, const OutputPaneNavigation &navigation);

    OutputCaret caret() const { return m_caret; }
    Position begin() const { return std::min(m_held.begin, m_caret.position); }
    Position end() const { return std::max(m_held.end, m_caret.position); }
    bool isEmpty() const { return begin() == end(); }

    /// Nothing is selected, the caret stands there.
    void moveTo(OutputCaret caret);
    /// The range is selected and held, the caret stands at its end.
    void hold(OutputRange range);
    /// The selection goes from what is held to the caret.
    void extendTo(OutputCaret caret);
    /// The selection goes from what is held to the far end of the range.
    void extendTo(OutputRange range);

    /// Whether a key asks for a movement.
    static bool isMove(const QKeyEvent &event);
    /// Moves as the key asks, `page` rows for a page. There must be text.
    void move(const QKeyEvent &event, int page);
    /// Moves up and down keep to a column until then.
    void forgetColumn() { m_wantedX.reset(); }

    /// Leaves out what lies outside the text.
    void keepWithinText();
    /// Goes with the end of the text, if the caret stood there.
    void followEnd();
    void standAtEnd() { m_isAtEnd = true; }

private:
    enum class Goal {
        nextCharacter,
        previousCharacter,
        nextWord,
        previousWord,
        nextRow,
        previousRow,
        nextPage,
        previousPage,
        rowBegin,
        rowEnd,
        lineBegin,
        lineEnd,
        textBegin,
        textEnd,
    };
    struct Move;

    static std::optional<Move> moveFor(const QKeyEvent &event);
    void set(OutputRange held, OutputCaret caret);
    OutputCaret target(Goal goal, int page) const;
    OutputCaret rowsAway(int rows) const;
    const TextView &text() const { return m_rows.text(); }

    OutputPaneRows &m_rows;
    const OutputPaneNavigation &m_navigation;
    OutputRange m_held;
    OutputCaret m_caret;
    bool m_isAtEnd = true;
    /// The column, in pixels, that moves up and down keep to.
    std::optional<double> m_wantedX;
};
