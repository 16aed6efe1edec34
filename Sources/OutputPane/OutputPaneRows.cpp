#include "OutputPane/OutputPaneRows.h"

#include "OutputPane/OutputPaneRowBreak.h"

#include <algorithm>
#include <iterator>

namespace
{

/// A screenful touches two or three blocks.
constexpr std::size_t mostLayouts = 8;

} // namespace

void OutputPaneRows::setColumns(int columns)
{
    columns = std::max(1, columns);
    if (columns == m_columns)
        return;
    m_columns = columns;
    m_layouts.clear();
    m_count.setColumns(columns);
}

OutputPaneRows::Row OutputPaneRows::last()
{
    const TextStore::BlockNumber number = m_text.endBlock() - 1;
    return {number, static_cast<int>(layout(number).starts.size()) - 1};
}

OutputPaneRows::Row OutputPaneRows::at(Position position)
{
    const TextStore::BlockNumber number = m_text.blockAt(position);
    const Layout &found = layout(number);
    const auto after = std::upper_bound(found.starts.begin(), found.starts.end(), position - found.begin);
    return {number, std::max(0, static_cast<int>(std::distance(found.starts.begin(), after)) - 1)};
}

bool OutputPaneRows::next(Row &row)
{
    if (row.index + 1 < static_cast<int>(layout(row.block).starts.size())) {
        ++row.index;
        return true;
    }
    if (row.block + 1 >= m_text.endBlock())
        return false;
    row = {row.block + 1, 0};
    return true;
}

bool OutputPaneRows::previous(Row &row)
{
    if (row.index > 0) {
        --row.index;
        return true;
    }
    if (row.block <= m_text.firstBlock())
        return false;
    row = {row.block - 1, static_cast<int>(layout(row.block - 1).starts.size()) - 1};
    return true;
}

OutputPaneRows::Position OutputPaneRows::begin(const Row &row)
{
    const Layout &found = layout(row.block);
    return found.begin + found.starts[static_cast<std::size_t>(row.index)];
}

OutputPaneRows::Position OutputPaneRows::end(const Row &row)
{
    const Layout &found = layout(row.block);
    const auto next = static_cast<std::size_t>(row.index) + 1;
    return found.begin + (next < found.starts.size() ? found.starts[next] : found.size);
}

QByteArrayView OutputPaneRows::bytes(const Row &row)
{
    const Position blockBegin = m_text.block(row.block).begin;
    const Position rowBegin = begin(row);
    return m_text.bytes(row.block).sliced(rowBegin - blockBegin, end(row) - rowBegin);
}

qint64 OutputPaneRows::countBefore(const Row &row)
{
    layout(row.block); // from here on its rows are known
    return m_count.before(row.block) + row.index;
}

OutputPaneRows::Row OutputPaneRows::atCount(qint64 rows)
{
    const OutputPaneRowCount::Place place = m_count.at(std::max<qint64>(0, rows));
    if (place.block == m_text.endBlock())
        return last();
    // Where the estimate was wrong the place is found in proportion.
    const qint64 estimated = m_count.rowsIn(place.block);
    const auto found = static_cast<qint64>(layout(place.block).starts.size());
    return {place.block, static_cast<int>(found == estimated ? place.rows : place.rows * found / estimated)};
}

const OutputPaneRows::Layout &OutputPaneRows::layout(TextStore::BlockNumber number)
{
    auto found =
        std::find_if(m_layouts.begin(), m_layouts.end(), [number](const Layout &each) { return each.block == number; });
    if (found == m_layouts.end()) {
        if (m_layouts.size() == mostLayouts)
            m_layouts.pop_back();
        found = m_layouts.insert(m_layouts.begin(), Layout{.block = number, .begin = -1});
    }
    m_layouts.splice(m_layouts.begin(), m_layouts, found);

    Layout &layout = m_layouts.front();
    const TextStore::Block &block = m_text.block(number);
    const bool endsText = number + 1 == m_text.endBlock();
    if (layout.begin == block.begin && layout.size == block.size && layout.endsText == endsText)
        return layout;
    if (layout.begin != block.begin || layout.size > block.size) {
        layout.starts.clear();
        layout.begin = block.begin;
    }
    layout.endsText = endsText;
    extend(layout, m_text.bytes(number));
    m_count.found(number, static_cast<qint64>(layout.starts.size()));
    return layout;
}

/// Finds the rows of a block's text, from the last ones that were found before it grew.
void OutputPaneRows::extend(Layout &layout, QByteArrayView text) const
{
    // What came may have joined the last character, and a CR that had a row of its own may now end the row before.
    const std::size_t firm = layout.starts.size() > 2 ? layout.starts.size() - 2 : 0;
    qsizetype at = firm < layout.starts.size() ? layout.starts[firm] : 0;
    layout.starts.resize(firm);
    layout.size = text.size();
    while (at < text.size()) {
        layout.starts.push_back(static_cast<qint32>(at));
        at = OutputPaneRowBreak::rowEnd(text, at, m_columns);
    }
    // The text goes on in a new row behind its last line end, if only for the caret.
    if (layout.endsText && text.endsWith('\n'))
        layout.starts.push_back(static_cast<qint32>(text.size()));
}
