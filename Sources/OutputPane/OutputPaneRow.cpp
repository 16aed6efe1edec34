#include "OutputPane/OutputPaneRow.h"

#include <algorithm>
#include <cmath>

namespace
{

using Look = DisplayCluster::Look;

constexpr int tabWidth = 8;

bool isPrintableAscii(char byte)
{
    return byte >= 0x20 && byte < 0x7f;
}

/// Blanks, digits and signs stand within right-to-left text as part of it.
bool isNeutral(const DisplayCluster &cluster)
{
    const char32_t lower = cluster.first | 0x20U;
    return cluster.look == Look::plain && (lower < U'a' || lower > U'z');
}

bool opens(char32_t character)
{
    return character == U'(' || character == U'[' || character == U'{';
}

bool closes(char32_t character)
{
    return character == U')' || character == U']' || character == U'}';
}

} // namespace

qsizetype OutputPaneRow::endOf(QByteArrayView text, qsizetype from, int columns)
{
    // Most rows hold nothing but printable ASCII.
    qsizetype at = from;
    const qsizetype full = std::min<qsizetype>(text.size(), from + columns);
    while (at < full && isPrintableAscii(text[at]))
        ++at;
    if (at == text.size())
        return at;
    if (text[at] == '\n')
        return at + 1;
    if (at == full && isPrintableAscii(text[at]))
        return at;

    DisplayClusters clusters(text, from);
    DisplayCluster cluster;
    int column = 0;
    while (clusters.next(cluster)) {
        if (!place(cluster, column, columns))
            return cluster.begin;
        if (cluster.look == DisplayCluster::Look::lineEnd)
            return cluster.end();
    }
    return text.size();
}

bool OutputPaneRow::place(DisplayCluster &cluster, int &column, int columns)
{
    if (cluster.look == DisplayCluster::Look::tab) {
        if (column >= columns)
            return false;
        cluster.cells = std::min(tabWidth - column % tabWidth, columns - column);
    }
    if (column > 0 && column + cluster.cells > columns)
        return false;
    cluster.column = column;
    column += cluster.cells;
    return true;
}

OutputPaneRow::OutputPaneRow(QByteArrayView text, int columns, const CellFont &font) : m_font(font)
{
    DisplayClusters clusters(text);
    DisplayCluster cluster;
    int column = 0;
    bool joins = false;
    while (clusters.next(cluster) && place(cluster, column, columns)) {
        joins = joins || cluster.look == Look::joined || cluster.look == Look::rightToLeft;
        m_clusters.push_back(cluster);
    }
    if (joins)
        join(text);
}

void OutputPaneRow::join(QByteArrayView text)
{
    for (std::size_t index = 0; index < m_clusters.size();) {
        const Look look = m_clusters[index].look;
        std::size_t end = index + 1;
        if (look == Look::joined) {
            while (end < m_clusters.size() && m_clusters[end].look == look)
                ++end;
            addJoined(text, index, end, Qt::LeftToRight);
        } else if (look == Look::rightToLeft) {
            end = rightToLeftEnd(index);
            addJoined(text, index, end, Qt::RightToLeft);
        }
        index = end;
    }
}

/// Right-to-left text goes on over blanks, digits and signs to the next letter of its direction, and takes in the
/// bracket that closes one it opened.
std::size_t OutputPaneRow::rightToLeftEnd(std::size_t first) const
{
    std::size_t end = first + 1;
    int openBrackets = 0;
    for (std::size_t ahead = end; ahead < m_clusters.size(); ++ahead) {
        const DisplayCluster &cluster = m_clusters[ahead];
        if (cluster.look != Look::rightToLeft && !isNeutral(cluster))
            break;
        if (opens(cluster.first))
            ++openBrackets;
        const bool closesOwn = closes(cluster.first) && openBrackets > 0;
        if (closesOwn)
            --openBrackets;
        if (cluster.look == Look::rightToLeft || (closesOwn && ahead == end))
            end = ahead + 1;
    }
    return end;
}

void OutputPaneRow::addJoined(QByteArrayView text, std::size_t first, std::size_t end, Qt::LayoutDirection direction)
{
    Joined joined{.first = first, .end = end};
    QString string;
    for (std::size_t index = first; index < end; ++index) {
        joined.starts.push_back(static_cast<int>(string.size()));
        string += QString::fromUtf8(text.sliced(m_clusters[index].begin, m_clusters[index].size));
    }
    joined.starts.push_back(static_cast<int>(string.size()));
    const DisplayCluster &last = m_clusters[end - 1];
    joined.x = m_clusters[first].column * m_font.cellWidth();
    joined.width = (last.column + last.cells) * m_font.cellWidth() - joined.x;
    joined.layout = m_font.layout(string, direction);
    if (!joined.layout)
        return;
    const double natural = joined.layout->lineAt(0).naturalTextWidth();
    joined.scale = natural > joined.width ? joined.width / natural : 1;
    m_joined.push_back(std::move(joined));
}

const OutputPaneRow::Joined *OutputPaneRow::joinedAt(std::size_t index) const
{
    const auto found = std::find_if(m_joined.begin(), m_joined.end(),
                                    [index](const Joined &each) { return each.first <= index && index < each.end; });
    return found == m_joined.end() ? nullptr : &*found;
}

/// Where the caret stands before a cluster; in right-to-left text that is its right edge.
double OutputPaneRow::before(std::size_t index) const
{
    if (const Joined *joined = joinedAt(index))
        return joined->x + joined->scale * joined->layout->lineAt(0).cursorToX(joined->starts[index - joined->first]);
    return m_clusters[index].column * m_font.cellWidth();
}

/// Where it stands behind a cluster.
double OutputPaneRow::after(std::size_t index) const
{
    if (const Joined *joined = joinedAt(index)) {
        const int next = joined->starts[index - joined->first + 1];
        return joined->x + joined->scale * joined->layout->lineAt(0).cursorToX(next);
    }
    return (m_clusters[index].column + m_clusters[index].cells) * m_font.cellWidth();
}

OutputPaneRow::Extent OutputPaneRow::extent(std::size_t index) const
{
    const auto [left, right] = std::minmax({before(index), after(index)});
    return {left, right};
}

std::size_t OutputPaneRow::indexOf(qint64 byte) const
{
    const auto found = std::find_if(m_clusters.begin(), m_clusters.end(),
                                    [byte](const DisplayCluster &cluster) { return byte < cluster.end(); });
    return static_cast<std::size_t>(found - m_clusters.begin());
}

double OutputPaneRow::xOf(qint64 byte) const
{
    if (m_clusters.empty())
        return 0;
    const std::size_t index = indexOf(byte);
    return index < m_clusters.size() ? before(index) : after(m_clusters.size() - 1);
}

OutputPaneRow::Extent OutputPaneRow::extentOf(qint64 byte) const
{
    const std::size_t index = indexOf(byte);
    const double end = xOf(byte);
    return index < m_clusters.size() ? extent(index) : Extent{end, end};
}

/// The cluster drawn at `x` or nearest to it, as text pressed or spread into its cells may leave some blank; none to
/// the right of the whole row.
std::optional<std::size_t> OutputPaneRow::nearest(double x) const
{
    std::optional<std::size_t> found;
    double least = 0;
    bool isWithin = false;
    for (std::size_t index = 0; index < m_clusters.size(); ++index) {
        const Extent drawn = extent(index);
        if (drawn.left <= x && x < drawn.right)
            return index;
        isWithin = isWithin || x < drawn.right;
        const double distance = std::max(drawn.left - x, x - drawn.right);
        if (m_clusters[index].look != Look::lineEnd && (!found || distance < least)) {
            found = index;
            least = distance;
        }
    }
    return isWithin ? found : std::nullopt;
}

qint64 OutputPaneRow::byteAt(double x) const
{
    if (const auto index = nearest(x))
        return m_clusters[*index].begin;
    return m_clusters.empty() ? 0 : m_clusters.back().begin;
}

qint64 OutputPaneRow::byteNearest(double x) const
{
    const auto index = nearest(x);
    if (!index)
        return endOfText();
    const bool isNearerBefore = std::abs(x - before(*index)) <= std::abs(x - after(*index));
    return isNearerBefore ? m_clusters[*index].begin : m_clusters[*index].end();
}

qint64 OutputPaneRow::endOfText() const
{
    if (m_clusters.empty())
        return 0;
    return m_clusters.back().look == Look::lineEnd ? m_clusters.back().begin : m_clusters.back().end();
}
