#include "OutputPane/OutputPaneCursor.h"

#include <QKeyEvent>
#include <QKeySequence>

#include <array>

struct OutputPaneCursor::Move {
    Goal goal = Goal::nextCharacter;
    bool selects = false;
};

std::optional<OutputPaneCursor::Move> OutputPaneCursor::moveFor(const QKeyEvent &event)
{
    struct Binding {
        Goal goal;
        QKeySequence::StandardKey moves;
        QKeySequence::StandardKey selects;
    };
    static constexpr std::array bindings{
        Binding{Goal::nextCharacter, QKeySequence::MoveToNextChar, QKeySequence::SelectNextChar},
        Binding{Goal::previousCharacter, QKeySequence::MoveToPreviousChar, QKeySequence::SelectPreviousChar},
        Binding{Goal::nextWord, QKeySequence::MoveToNextWord, QKeySequence::SelectNextWord},
        Binding{Goal::previousWord, QKeySequence::MoveToPreviousWord, QKeySequence::SelectPreviousWord},
        Binding{Goal::nextRow, QKeySequence::MoveToNextLine, QKeySequence::SelectNextLine},
        Binding{Goal::previousRow, QKeySequence::MoveToPreviousLine, QKeySequence::SelectPreviousLine},
        Binding{Goal::nextPage, QKeySequence::MoveToNextPage, QKeySequence::SelectNextPage},
        Binding{Goal::previousPage, QKeySequence::MoveToPreviousPage, QKeySequence::SelectPreviousPage},
        Binding{Goal::rowBegin, QKeySequence::MoveToStartOfLine, QKeySequence::SelectStartOfLine},
        Binding{Goal::rowEnd, QKeySequence::MoveToEndOfLine, QKeySequence::SelectEndOfLine},
        Binding{Goal::lineBegin, QKeySequence::MoveToStartOfBlock, QKeySequence::SelectStartOfBlock},
        Binding{Goal::lineEnd, QKeySequence::MoveToEndOfBlock, QKeySequence::SelectEndOfBlock},
        Binding{Goal::textBegin, QKeySequence::MoveToStartOfDocument, QKeySequence::SelectStartOfDocument},
        Binding{Goal::textEnd, QKeySequence::MoveToEndOfDocument, QKeySequence::SelectEndOfDocument},
    };
    // The event's own comparison is not const.
    QKeyEvent key(event.type(), event.key(), event.modifiers());
    for (const Binding &binding : bindings) {
        if (key.matches(binding.moves))
            return Move{binding.goal, false};
        if (key.matches(binding.selects))
            return Move{binding.goal, true};
    }
    return std::nullopt;
}

OutputPaneCursor::OutputPaneCursor(OutputPaneRows &rows, const OutputPaneNavigation &navigation)
    : m_rows(rows),
      m_navigation(navigation)
{
    moveTo({text().end(), false});
}

void OutputPaneCursor::set(OutputRange held, OutputCaret caret)
{
    m_held = held;
    m_caret = caret;
    keepWithinText();
    m_isAtEnd = isEmpty() && m_caret.position == text().end();
}

void OutputPaneCursor::moveTo(OutputCaret caret)
{
    set({caret.position, caret.position}, caret);
}

void OutputPaneCursor::hold(OutputRange range)
{
    set(range, {range.end, false});
}

void OutputPaneCursor::extendTo(OutputCaret caret)
{
    set(m_held, caret);
}

void OutputPaneCursor::extendTo(OutputRange range)
{
    set(m_held, {range.begin < m_held.begin ? range.begin : range.end, false});
}

void OutputPaneCursor::keepWithinText()
{
    const auto within = [this](Position position) { return std::clamp(position, text().begin(), text().end()); };
    m_held = {within(m_held.begin), within(m_held.end)};
    m_caret.position = within(m_caret.position);
}

void OutputPaneCursor::followEnd()
{
    if (m_isAtEnd && isEmpty())
        moveTo({text().end(), false});
}

bool OutputPaneCursor::isMove(const QKeyEvent &event)
{
    return moveFor(event).has_value();
}

void OutputPaneCursor::move(const QKeyEvent &event, int page)
{
    const std::optional<Move> move = moveFor(event);
    if (!move)
        return;
    keepWithinText();
    const Goal goal = move->goal;
    const bool isVertical =
        goal == Goal::nextRow || goal == Goal::previousRow || goal == Goal::nextPage || goal == Goal::previousPage;
    if (!isVertical)
        m_wantedX.reset();
    else if (!m_wantedX)
        m_wantedX = m_navigation.xOf(m_caret);

    if (move->selects)
        extendTo(target(goal, page));
    else if (!isEmpty() && goal == Goal::nextCharacter)
        moveTo({end(), false});
    else if (!isEmpty() && goal == Goal::previousCharacter)
        moveTo({begin(), false});
    else
        moveTo(target(goal, page));
}

OutputCaret OutputPaneCursor::target(Goal goal, int page) const
{
    switch (goal) {
    case Goal::nextCharacter:
        return {m_navigation.nextCharacter(m_caret.position), false};
    case Goal::previousCharacter:
        return {m_navigation.previousCharacter(m_caret.position), false};
    case Goal::nextWord:
        return {m_navigation.nextWord(m_caret.position), false};
    case Goal::previousWord:
        return {m_navigation.previousWord(m_caret.position), false};
    case Goal::nextRow:
        return rowsAway(1);
    case Goal::previousRow:
        return rowsAway(-1);
    case Goal::nextPage:
        return rowsAway(page);
    case Goal::previousPage:
        return rowsAway(-page);
    case Goal::rowBegin:
        return m_navigation.rowBegin(m_caret);
    case Goal::rowEnd:
        return m_navigation.rowEnd(m_caret);
    case Goal::lineBegin:
        return {m_navigation.lineAt(m_caret.position).begin, false};
    case Goal::lineEnd:
        return m_navigation.lineEnd(m_caret.position);
    case Goal::textBegin:
        return {text().begin(), false};
    case Goal::textEnd:
        return {text().end(), false};
    }
    Q_UNREACHABLE();
}

/// That many rows down, or up when negative, as near to the wanted column as can be. Past the first or the last row it
/// is the end of the text.
OutputCaret OutputPaneCursor::rowsAway(int rows) const
{
    OutputPaneRows::Row row = m_navigation.rowOf(m_caret);
    for (; rows > 0; --rows) {
        if (!m_rows.next(row))
            return {text().end(), false};
    }
    for (; rows < 0; ++rows) {
        if (!m_rows.previous(row))
            return {text().begin(), false};
    }
    return m_navigation.nearest(row, *m_wantedX);
}
