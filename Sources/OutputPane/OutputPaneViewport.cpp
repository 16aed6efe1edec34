#include "OutputPane/OutputPaneViewport.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace
{

/// Below the last row.
constexpr int bottomSpace = OutputPaneViewport::padding + 1;

} // namespace

void OutputPaneViewport::setHeights(int viewport, int row)
{
    m_viewportHeight = viewport;
    m_rowHeight = row;
}

std::vector<OutputPaneViewport::VisibleRow> OutputPaneViewport::visibleRows()
{
    std::vector<VisibleRow> visible;
    if (m_rows.isEmpty())
        return visible;
    Top place = top();
    auto y = static_cast<int>(-place.above);
    do {
        visible.push_back({place.row, y});
        y += m_rowHeight;
    } while (y < m_viewportHeight && m_rows.next(place.row));
    return visible;
}

OutputPaneViewport::Row OutputPaneViewport::rowAt(int y)
{
    const std::vector<VisibleRow> visible = visibleRows();
    const auto found =
        std::find_if(visible.begin(), visible.end(), [&](const VisibleRow &each) { return y < each.y + m_rowHeight; });
    return found == visible.end() ? visible.back().row : found->row;
}

bool OutputPaneViewport::showsEnd()
{
    return m_isAtEnd || m_rows.isEmpty() || !isBefore(top(), topAtEnd());
}

void OutputPaneViewport::hold()
{
    if (m_isAtEnd && !m_rows.isEmpty())
        keep(topAtEnd());
}

void OutputPaneViewport::scrollBy(qint64 pixels)
{
    if (m_rows.isEmpty())
        return;
    Top place = top();
    place.above += pixels;
    setTop(place);
}

void OutputPaneViewport::scrollTo(qint64 pixels)
{
    if (m_rows.isEmpty())
        return;
    if (pixels >= mostAbove()) {
        scrollToEnd();
        return;
    }
    if (pixels < padding) {
        setTop({m_rows.first(), pixels - padding});
        return;
    }
    const auto [row, part] = m_rows.atEstimate(static_cast<double>(pixels - padding) / m_rowHeight);
    setTop({row, std::llround(part * m_rowHeight)});
}

void OutputPaneViewport::show(const Row &row)
{
    const Top place = top();
    if (isBefore({row, 0}, place)) {
        setTop({row, row == m_rows.first() ? -padding : 0});
        return;
    }
    const std::vector<VisibleRow> visible = visibleRows();
    const auto found =
        std::find_if(visible.begin(), visible.end(), [&](const VisibleRow &each) { return each.row == row; });
    if (found != visible.end() && found->y + m_rowHeight <= m_viewportHeight)
        return;
    setTop({row, m_rowHeight - m_viewportHeight + (row == m_rows.last() ? bottomSpace : 0)});
}

qint64 OutputPaneViewport::contentAbove()
{
    return m_rows.isEmpty() ? 0 : pixelsAbove(top());
}

qint64 OutputPaneViewport::mostAbove()
{
    return m_rows.isEmpty() ? 0 : pixelsAbove(topAtEnd());
}

qint64 OutputPaneViewport::pixelsAbove(const Top &top)
{
    if (top.above < 0)
        return padding + top.above;
    const double part = static_cast<double>(top.above) / m_rowHeight;
    return padding + std::llround(m_rows.estimateBefore({top.row, part}) * m_rowHeight);
}

bool OutputPaneViewport::isBefore(const Top &one, const Top &other)
{
    return std::tie(one.row.block, one.row.index, one.above) < std::tie(other.row.block, other.row.index, other.above);
}

OutputPaneViewport::Top OutputPaneViewport::top()
{
    const Top last = topAtEnd();
    if (m_isAtEnd)
        return last;
    // What was there may have been dropped since, or stand in another row at another width.
    const bool isDropped = m_topPosition < m_rows.text().begin();
    const Top place = within(isDropped ? Top{m_rows.first(), -padding} : Top{m_rows.at(m_topPosition), m_above});
    return isBefore(place, last) ? place : last;
}

/// The place from which the rows reach exactly to the bottom; the start when they do not fill the viewport.
OutputPaneViewport::Top OutputPaneViewport::topAtEnd()
{
    Top place{m_rows.last(), m_rowHeight + bottomSpace - m_viewportHeight};
    while (place.above < 0 && m_rows.previous(place.row))
        place.above += m_rowHeight;
    place.above = std::max<qint64>(place.above, -padding);
    return place;
}

/// A place whose distance may be any number, brought within the row and the content.
OutputPaneViewport::Top OutputPaneViewport::within(Top top)
{
    while (top.above < 0 && m_rows.previous(top.row))
        top.above += m_rowHeight;
    while (top.above >= m_rowHeight && m_rows.next(top.row))
        top.above -= m_rowHeight;
    if (top.row == m_rows.first())
        top.above = std::max<qint64>(top.above, -padding);
    return top;
}

void OutputPaneViewport::setTop(Top top)
{
    top = within(top);
    keep(top);
    m_isAtEnd = !isBefore(top, topAtEnd());
}

void OutputPaneViewport::keep(const Top &top)
{
    m_isAtEnd = false;
    m_topPosition = m_rows.begin(top.row);
    m_above = top.above;
}
