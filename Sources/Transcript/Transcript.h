#pragma once

// The output of runs: an ordered list of segments, each text of one kind, over one store of UTF-8 text. Main thread
// only.
//
// Appending costs what the new text costs, whatever the transcript already holds. A position is a byte offset counted
// from the first byte ever appended; dropping the front or clearing moves begin() and renumbers nothing.
//
// Past 400,000 characters (as a reader counts them: grapheme clusters) every append drops the oldest segment, one per
// call and never the last one: a soft bound on purpose. Characters are counted segment by segment, so a character that
// two segments share counts in both.

#include "Text/GraphemeCounter.h"
#include "Transcript/OutputSegment.h"
#include "Transcript/TextStore.h"

#include <QString>
#include <QUtf8StringView>
#include <QUuid>

#include <cstdint>
#include <deque>

class Transcript
{
public:
    using Position = TextStore::Position;

    /// More characters than this, and the oldest segment goes.
    static constexpr int characterBound = 400'000;

    /// A stretch of text of one kind.
    struct Run {
        Position begin = 0;
        Position end = 0;
        OutputKind kind = OutputKind::out;
    };

    /// Adds `text` to the last segment when that has the same kind, else as a new segment. It must be valid UTF-8, as
    /// the tool runner hands it on: looking through it again would take longer than adding it.
    void append(QUtf8StringView text, OutputKind kind);

    /// Removes everything and gives the memory back.
    void clear();

    /// True when there is no segment at all (an empty text of a new kind makes one).
    bool isEmpty() const { return m_segments.empty(); }

    std::size_t segmentCount() const { return m_segments.size(); }
    /// A copy of one segment, 0 being the oldest.
    OutputSegment segment(std::size_t index) const;

    /// The texts of all segments, joined as they are.
    QString plainText() const;

    /// The stretch of one kind that holds `position`; the last one for the end. There must be a segment.
    Run runAt(Position position) const;

    const TextStore &text() const { return m_text; }
    Position begin() const { return m_text.begin(); }
    Position end() const { return m_text.end(); }

    /// Bytes of memory that the text takes.
    std::int64_t memory() const { return m_text.memory(); }

private:
    struct Segment {
        QUuid id;
        Position begin = 0;
        // Past the bound nothing needs to be counted: one segment alone exceeds it, whatever the others hold.
        GraphemeCounter characters{characterBound + 1};
        OutputKind kind = OutputKind::out;
    };

    Position endOf(std::size_t index) const;

    TextStore m_text;
    std::deque<Segment> m_segments;
    /// The sum of the segments' counts.
    qint64 m_characters = 0;
};
