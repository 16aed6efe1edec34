#pragma once

// Where a text occurs in a snapshot, and how often. The text is looked through in stretches, in whatever order they are
// needed; of each is kept how many matches begin in it, so that a match is found again, and its number told, at the
// price of one stretch, however much text and however many matches there are. When text arrives or the front is
// dropped, all that is unchanged stays known.
//
// Nothing takes longer than a stretch (a fraction of a millisecond), but firstFrom and lastBefore, which may come to
// read all of it: they ask `stop` between two stretches and then give up. One thread at a time.

#include "Text/TextPattern.h"
#include "Transcript/TextSnapshot.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

class TextSearch
{
public:
    using Position = std::int64_t;
    using Stop = std::function<bool()>;

    static constexpr Position stretchSize = Position{256} * 1024;

    TextSearch(TextPattern pattern, Stop stop);
    TextSearch(const TextSearch &) = delete;
    TextSearch &operator=(const TextSearch &) = delete;

    /// The text is this from now on: what it was, without some of its front, and with more at its end.
    void setText(TextSnapshot text);
    /// Lets go of the text, not of what is known.
    void releaseText();

    /// Every match of the text is counted.
    bool isComplete() const { return m_known == m_stretches.size(); }
    /// Counts the first stretch that was not.
    void countOn();
    /// As far as they are counted.
    std::int64_t count() const { return m_count; }

    /// The first match that begins there or later, the first of all when there is none.
    std::optional<TextMatch> firstFrom(Position position);
    /// The last match that begins before, the last of all when there is none.
    std::optional<TextMatch> lastBefore(Position position);
    /// How many matches begin before a position; only when all are counted.
    std::int64_t countBefore(Position position);

private:
    struct Stretch {
        bool isKnown = false;
        std::int64_t matches = 0;
        /// Where the search in it began: behind the last match before it.
        Position begin = 0;
        /// So many bytes behind its end its last match reaches.
        Position beyond = 0;
    };
    using Index = std::size_t;

    Index indexOf(Position position) const { return static_cast<Index>(position / stretchSize - m_first); }
    Position beginOf(Index index) const { return (m_first + static_cast<Position>(index)) * stretchSize; }
    bool isKnownToHaveNone(Index index) const { return m_stretches[index].isKnown && m_stretches[index].matches == 0; }
    Position searchBegin(Index index) const;
    std::optional<TextMatch> firstIn(Index index, Position position);
    std::optional<TextMatch> lastIn(Index index, Position position);
    void look(Index index, const TextMatcher::Visitor &visit);
    void keep(Index index, const Stretch &found);
    void forget(Index index);
    void forgetIfMoved(Index index);

    const TextPattern m_pattern;
    const Stop m_stop;
    TextMatcher m_matcher;
    TextSnapshot m_text;
    Position m_textBegin = 0;
    Position m_textEnd = 0;
    /// What was read last.
    std::optional<TextPiece> m_piece;

    /// The stretches of the text, the first of them with this number.
    std::deque<Stretch> m_stretches;
    Position m_first = 0;
    Index m_known = 0;
    /// All before it are known.
    Index m_firstUnknown = 0;
    std::int64_t m_count = 0;
};
