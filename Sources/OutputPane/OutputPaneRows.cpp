#include "OutputPane/OutputPaneRows.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace
{

/// A screenful touches two or three blocks.
constexpr std::size_t mostLayouts = 8;

/// The estimate of all rows is a sum over so many stretches of blocks at most, as it is made once a frame.
constexpr qint64 mostStretches = 1024;

} // namespace

void OutputPaneRows::setColumns(int columns)
{
    columns = std::max(1, columns);
    if (columns == m_columns)
        return;
    m_columns = columns;
    m_layouts.clear();
}

OutputPaneRows::Row OutputPaneRows::last()
{
    const TextView::BlockNumber number = m_text.endBlock() - 1;
    return {number, static_cast<int>(layout(number).starts.size()) - 1};
}

OutputPaneRows::Row OutputPaneRows::at(Position position)
{
    const TextView::BlockNumber number = m_text.blockAt(position);
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
    // What stands for a missing block is shorter than the text that it stands for.
    return next < found.starts.size() ? found.begin + found.starts[next] : m_text.block(row.block).end();
}

QByteArrayView OutputPaneRows::bytes(const Row &row)
{
    const Position blockBegin = m_text.block(row.block).begin();
    const QByteArrayView text = m_text.bytes(row.block);
    // The block may have gone missing since its rows were found.
    const Position rowBegin = std::min<Position>(begin(row) - blockBegin, text.size());
    const Position rowEnd = std::min<Position>(end(row) - blockBegin, text.size());
    return text.sliced(rowBegin, rowEnd - rowBegin);
}

/// The rows of a stretch of blocks, as far as can be told without looking at them.
qint64 OutputPaneRows::estimate(TextView::BlockNumber from, TextView::BlockNumber to) const
{
    const TextCount size = m_text.before(to) - m_text.before(from);
    const bool endsText = to == m_text.endBlock(); // whose last line has no line feed
    return std::max(size.lineFeeds, (size.utf16 - size.lineFeeds) / m_columns) + (endsText ? 1 : 0);
}

/// In blocks. A power of two, so that the stretches seldom change as the text grows.
qint64 OutputPaneRows::stretchLength() const
{
    const qint64 blocks = m_text.endBlock() - m_text.firstBlock();
    qint64 length = 1;
    while (blocks / length >= mostStretches)
        length *= 2;
    return length;
}

qint64 OutputPaneRows::estimateBefore(TextView::BlockNumber number) const
{
    const qint64 length = stretchLength();
    qint64 rows = 0;
    for (TextView::BlockNumber at = m_text.firstBlock(); at < number;) {
        const TextView::BlockNumber next = std::min(number, at - at % length + length);
        rows += estimate(at, next);
        at = next;
    }
    return rows;
}

double OutputPaneRows::estimateBefore(const Place &place)
{
    const qint64 before = estimateBefore(place.row.block);
    const qint64 here = estimateBefore(place.row.block + 1) - before;
    const auto found = static_cast<double>(layout(place.row.block).starts.size());
    return static_cast<double>(before) + (place.row.index + place.part) * static_cast<double>(here) / found;
}

OutputPaneRows::Place OutputPaneRows::atEstimate(double rows)
{
    // The last block that has no more than so many rows before it.
    TextView::BlockNumber block = m_text.firstBlock();
    TextView::BlockNumber end = m_text.endBlock();
    while (end - block > 1) {
        const TextView::BlockNumber middle = block + (end - block) / 2;
        (static_cast<double>(estimateBefore(middle)) <= rows ? block : end) = middle;
    }
    const qint64 before = estimateBefore(block);
    const auto here = static_cast<double>(estimateBefore(block + 1) - before);
    const std::size_t found = layout(block).starts.size();
    const double inside = (rows - static_cast<double>(before)) * static_cast<double>(found) / here;
    if (inside >= static_cast<double>(found))
        return {last()};
    const double index = std::floor(std::max(0.0, inside));
    return {{block, static_cast<int>(index)}, std::max(0.0, inside) - index};
}

const OutputPaneRows::Layout &OutputPaneRows::layout(TextView::BlockNumber number)
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
    const TextView::Block block = m_text.block(number);
    const bool endsText = number + 1 == m_text.endBlock();
    if (layout.begin == block.begin() && layout.size == block.size.bytes && layout.endsText == endsText)
        return layout;
    if (layout.begin != block.begin() || layout.size > block.size.bytes) {
        layout.starts.clear();
        layout.begin = block.begin();
    }
    layout.endsText = endsText;
    extend(layout, m_text.bytes(number));
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
        at = OutputPaneRow::endOf(text, at, m_columns);
    }
    // The text goes on in a new row behind its last line end, if only for the caret.
    if (layout.endsText && text.endsWith('\n'))
        layout.starts.push_back(static_cast<qint32>(text.size()));
}
