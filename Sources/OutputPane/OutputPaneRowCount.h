#pragma once

// How many rows each block of the text has, and how many there are before it. A block that was laid out is known
// exactly; any other is estimated from what the text store knows of it, exactly where no line of its wraps.
//
// The counts of blocks that do not change any more are summed up in groups and kept: with a million blocks, to count
// all rows once a frame must cost no more than a few thousand additions.
//
// Main thread only. Everything is asked of the text as it is at that moment.

#include "Transcript/TextStore.h"

#include <deque>
#include <map>

class OutputPaneRowCount
{
public:
    using BlockNumber = TextStore::BlockNumber;

    struct Place {
        BlockNumber block = 0;
        /// Rows of that block before the place.
        qint64 rows = 0;
    };

    explicit OutputPaneRowCount(const TextStore &text) : m_text(text) {}

    /// Forgets all that was found: it held for another number of columns.
    void setColumns(int columns);
    /// The block as it is now has that many rows.
    void found(BlockNumber number, qint64 rows);

    qint64 rowsIn(BlockNumber number) const;
    qint64 all() { return before(m_text.endBlock()); }
    /// The rows of all blocks before that one.
    qint64 before(BlockNumber number);
    /// The place with so many rows before it; the end of the text when there are not so many.
    Place at(qint64 rows);

private:
    /// What was found in a block as it was then.
    struct Found {
        TextStore::Position begin = 0;
        qint32 size = 0;
        bool endsText = false;
        qint64 rows = 0;
    };

    qint64 estimate(BlockNumber number) const;
    bool isGroup(BlockNumber first) const;
    qint64 rowsInGroup(BlockNumber first);

    const TextStore &m_text;
    int m_columns = 80;
    /// Only of blocks that were estimated wrongly.
    std::map<BlockNumber, Found> m_found;
    /// The sum of each group of blocks, -1 where it is not known.
    std::deque<qint64> m_groups;
    qint64 m_firstGroup = 0;
};
