#include "OutputPane/OutputPaneKeys.h"

#include <QKeyEvent>
#include <QKeySequence>

#include <array>

namespace
{

struct Binding {
    OutputMove::Goal goal;
    QKeySequence::StandardKey moves;
    QKeySequence::StandardKey selects;
};

using Goal = OutputMove::Goal;

constexpr std::array bindings{
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

} // namespace

std::optional<OutputMove> OutputPaneKeys::moveFor(const QKeyEvent &event)
{
    // The event's own comparison is not const.
    QKeyEvent key(event.type(), event.key(), event.modifiers());
    for (const Binding &binding : bindings) {
        if (key.matches(binding.moves))
            return OutputMove{binding.goal, false};
        if (key.matches(binding.selects))
            return OutputMove{binding.goal, true};
    }
    return std::nullopt;
}
