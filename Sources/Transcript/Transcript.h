#pragma once

// The output of runs: an ordered list of segments, each text of one kind, over one store of UTF-8 text. Main thread
// only.
//
// Appending costs what the new text costs, whatever the transcript already holds. A position is a byte offset counted
// from the first byte ever appended; dropping the front or clearing moves begin() and renumbers nothing.
//
// Beside what is shown of all runs there is the record of the current or last run: everything that it printed, whatever
// the transcript dropped of it meanwhile. Both are views on the end of one store.
//
// Past 400,000 characters (as a reader counts them: grapheme clusters) every append drops the oldest segment, one per
// call and never the last one: a soft bound on purpose. Characters are counted segment by segment, so a character that
// two segments share counts in both.

#include "Text/GraphemeCounter.h"
#include "Transcript/OutputSegment.h"
#include "Transcript/TextView.h"

#include <QString>
#include <QUtf8StringView>
#include <QUuid>

#include <cstdint>
#include <deque>
#include <functional>
#include <utility>

class Transcript
{
public:
    using Position = TextStore::Position;

    /// More characters than this, and the oldest segment goes.
    static constexpr int characterBound = 400'000;

    /// `onLoss` is called on any thread when text could not be kept: dropLost is due, on the main one.
    explicit Transcript(const TextStorage &storage = {}, std::function<void()> onLoss = {})
        : m_store(storage, std::move(onLoss))
    {
    }

    /// Adds `text` to the last segment when that has the same kind, else as a new segment. It must be valid UTF-8, as
    /// the tool runner hands it on: looking through it again would take longer than adding it.
    void append(QUtf8StringView text, OutputKind kind);

    /// Removes everything, the record too, and gives memory and disk space back.
    void clear();

    /// A run starts: what is appended from now on is its record.
    void beginRecord();

    /// Drops the front that could not be kept.
    void dropLost();
    /// How much of the record could not be kept: a sentence or two for the user; empty for nothing.
    QString loss() const;

    /// True when there is no segment at all (an empty text of a new kind makes one).
    bool isEmpty() const { return m_segments.empty(); }

    std::size_t segmentCount() const { return m_segments.size(); }
    /// A copy of one segment, 0 being the oldest.
    OutputSegment segment(std::size_t index) const;

    /// The texts of all segments, joined as they are.
    QString plainText() const;

    /// What the transcript holds.
    const TextView &text() const { return m_text; }
    Position begin() const { return m_text.begin(); }
    Position end() const { return m_text.end(); }

    /// All that the current or last run appended.
    const TextView &record() const { return m_record; }

    /// Bytes of memory that the text takes.
    std::int64_t memory() const { return m_store.memory(); }

private:
    struct Segment {
        QUuid id;
        Position begin = 0;
        // Past the bound nothing needs to be counted: one segment alone exceeds it, whatever the others hold.
        GraphemeCounter characters{characterBound + 1};
        OutputKind kind = OutputKind::out;
    };

    Position endOf(std::size_t index) const;
    void dropFrontSegment();
    void dropUnused();

    TextStore m_store;
    TextView m_text{m_store};
    TextView m_record{m_store};
    /// Where the record began.
    Position m_recordBegin = 0;
    /// Text that was lost before the record began.
    std::int64_t m_lostBefore = 0;
    std::deque<Segment> m_segments;
    /// The sum of the segments' counts.
    qint64 m_characters = 0;
};
