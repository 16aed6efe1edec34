#pragma once

#include <QtGlobal>

#include <optional>

class QKeyEvent;

/// A movement of the caret, and whether the selection goes with it.
struct OutputMove {
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

    Goal goal = Goal::nextCharacter;
    bool selects = false;
};

namespace OutputPaneKeys
{

/// The movement that the platform's standard keys ask for; nothing for any other key.
std::optional<OutputMove> moveFor(const QKeyEvent &event);

} // namespace OutputPaneKeys
