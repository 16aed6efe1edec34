#include "OutputPane/OutputPaneRowCount.h"

#include <algorithm>

namespace
{

/// Blocks in a group. A group begins at a multiple of this.
constexpr qint64 groupSize = 256;

} // namespace

void OutputPaneRowCount::setColumns(int columns)
{
    m_columns = columns;
    m_found.clear();
    m_groups.clear();
}

void OutputPaneRowCount::found(BlockNumber number, qint64 rows)
{
    m_found.erase(m_found.begin(), m_found.lower_bound(m_text.firstBlock()));
    if (rowsIn(number) == rows)
        return;
    const TextStore::Block &block = m_text.block(number);
    m_found.insert_or_assign(number, Found{block.begin, block.size, number + 1 == m_text.endBlock(), rows});
    const qint64 group = number / groupSize - m_firstGroup;
    if (group >= 0 && group < static_cast<qint64>(m_groups.size()))
        m_groups[static_cast<std::size_t>(group)] = -1;
}

qint64 OutputPaneRowCount::estimate(BlockNumber number) const
{
    const TextStore::Block &block = m_text.block(number);
    const qint64 lines = block.lineFeeds + (block.openLine > 0 || number + 1 == m_text.endBlock() ? 1 : 0);
    return block.longestLine() <= m_columns ? lines : std::max<qint64>(lines, lines / 2 + block.cells / m_columns);
}

qint64 OutputPaneRowCount::rowsIn(BlockNumber number) const
{
    const auto found = m_found.find(number);
    if (found == m_found.end())
        return estimate(number);
    const TextStore::Block &block = m_text.block(number);
    const Found &then = found->second;
    const bool isUnchanged =
        then.begin == block.begin && then.size == block.size && then.endsText == (number + 1 == m_text.endBlock());
    return isUnchanged ? then.rows : estimate(number);
}

/// Whether a group of blocks begins there whose rows stay the same: neither the first block, whose front may be
/// dropped, nor the last one, which grows, is in it.
bool OutputPaneRowCount::isGroup(BlockNumber first) const
{
    return first % groupSize == 0 && first > m_text.firstBlock() && first + groupSize < m_text.endBlock();
}

qint64 OutputPaneRowCount::rowsInGroup(BlockNumber first)
{
    // Forgets the groups that were dropped.
    const qint64 firstGroup = m_text.firstBlock() / groupSize;
    while (!m_groups.empty() && m_firstGroup < firstGroup) {
        m_groups.pop_front();
        ++m_firstGroup;
    }
    if (m_groups.empty())
        m_firstGroup = firstGroup;
    const auto index = static_cast<std::size_t>(first / groupSize - m_firstGroup);
    if (index >= m_groups.size())
        m_groups.resize(index + 1, -1);
    qint64 &rows = m_groups[index];
    if (rows < 0) {
        rows = 0;
        for (BlockNumber number = first; number < first + groupSize; ++number)
            rows += rowsIn(number);
    }
    return rows;
}

qint64 OutputPaneRowCount::before(BlockNumber number)
{
    qint64 rows = 0;
    BlockNumber at = m_text.firstBlock();
    while (at < number) {
        const bool wholeGroup = isGroup(at) && at + groupSize <= number;
        rows += wholeGroup ? rowsInGroup(at) : rowsIn(at);
        at += wholeGroup ? groupSize : 1;
    }
    return rows;
}

OutputPaneRowCount::Place OutputPaneRowCount::at(qint64 rows)
{
    BlockNumber at = m_text.firstBlock();
    while (at < m_text.endBlock()) {
        const bool wholeGroup = isGroup(at);
        const qint64 here = wholeGroup ? rowsInGroup(at) : rowsIn(at);
        if (rows < here && !wholeGroup)
            return {at, rows};
        if (rows < here) {
            // Inside this group, block by block.
            while (rows >= rowsIn(at))
                rows -= rowsIn(at++);
            return {at, rows};
        }
        rows -= here;
        at += wholeGroup ? groupSize : 1;
    }
    return {at, 0};
}
