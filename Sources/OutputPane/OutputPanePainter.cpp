#include "OutputPane/OutputPanePainter.h"

#include "Look/Colours.h"

#include <algorithm>
#include <cmath>

namespace
{

using Look = DisplayCluster::Look;

} // namespace

QColor OutputPanePainter::colourOf(OutputKind kind, const QPalette &palette)
{
    switch (kind) {
    case OutputKind::out:
        return Colours::primary(palette);
    case OutputKind::err:
        return Colours::red(palette);
    case OutputKind::info:
        return Colours::secondary(palette);
    case OutputKind::ok:
        return Colours::green(palette);
    case OutputKind::fail:
        return Colours::purple(palette);
    case OutputKind::warn:
        return Colours::orange(palette);
    }
    Q_UNREACHABLE();
}

OutputPanePainter::OutputPanePainter(QPainter &painter, CellFont &font, const QPalette &palette)
    : m_painter(painter),
      m_font(font),
      m_highlight(palette.color(QPalette::Highlight)),
      m_highlightedText(palette.color(QPalette::HighlightedText)),
      m_found(Colours::found(palette))
{
    for (std::size_t kind = 0; kind < m_kinds.size(); ++kind)
        m_kinds[kind] = colourOf(static_cast<OutputKind>(kind), palette);
}

void OutputPanePainter::draw(const OutputPaneRow &row, QByteArrayView text, const std::vector<Style> &styles,
                             QPointF place)
{
    drawGround(row, styles, place);
    drawClusters(row, text, styles, place);
    for (const OutputPaneRow::Joined &joined : row.joined())
        drawJoined(joined, styles, place);
}

const QColor &OutputPanePainter::colour(Style style) const
{
    return style.isSelected ? m_highlightedText : m_kinds[static_cast<std::size_t>(style.kind)];
}

/// What stands behind the text; null for nothing but the pane itself.
const QColor *OutputPanePainter::ground(Style style) const
{
    return style.isSelected ? &m_highlight : style.isFound ? &m_found : nullptr;
}

void OutputPanePainter::drawGround(const OutputPaneRow &row, const std::vector<Style> &styles, QPointF place)
{
    const std::vector<DisplayCluster> &clusters = row.clusters();
    // Joined text shows its own ground, which need not be one stretch.
    const auto groundOf = [&](std::size_t index) {
        return row.joinedAt(index) == nullptr ? ground(styles[index]) : nullptr;
    };
    for (std::size_t index = 0; index < clusters.size(); ++index) {
        const QColor *const colour = groundOf(index);
        if (colour == nullptr)
            continue;
        const std::size_t first = index;
        while (index + 1 < clusters.size() && groundOf(index + 1) == colour)
            ++index;
        const DisplayCluster &last = clusters[index];
        // A line end shows as half a blank.
        const double lastWidth = last.look == Look::lineEnd ? 0.5 : last.cells;
        const double left = clusters[first].column * m_font.cellWidth();
        const double right = (last.column + lastWidth) * m_font.cellWidth();
        m_painter.fillRect(QRectF(place.x() + left, place.y(), right - left, m_font.rowHeight()), *colour);
    }
}

void OutputPanePainter::drawClusters(const OutputPaneRow &row, QByteArrayView text, const std::vector<Style> &styles,
                                     QPointF place)
{
    auto joined = row.joined().begin();
    Style waiting;
    for (std::size_t index = 0; index < row.clusters().size(); ++index) {
        if (joined != row.joined().end() && index == joined->first) {
            index = joined->end - 1;
            ++joined;
            continue;
        }
        const DisplayCluster &cluster = row.clusters()[index];
        const QPointF cell(place.x() + cluster.column * m_font.cellWidth(), place.y() + m_font.ascent());
        if (cluster.look == Look::glyphs) {
            m_painter.setPen(colour(styles[index]));
            drawAlone(cluster, text, cell);
            continue;
        }
        if (!(styles[index] == waiting)) {
            flush(waiting);
            waiting = styles[index];
        }
        if (cluster.look == Look::plain)
            addGlyph(cluster.first, cell);
        else if (cluster.look == Look::symbol)
            addSymbol(cluster, styles[index], cell);
    }
    flush(waiting);
}

void OutputPanePainter::addGlyph(char32_t character, QPointF place)
{
    if (character == U' ')
        return;
    m_glyphs.append(m_font.glyph(static_cast<char16_t>(character)));
    m_places.append(place);
}

/// The name of a symbol stands on a tint, so that it is not taken for text.
void OutputPanePainter::addSymbol(const DisplayCluster &cluster, Style style, QPointF place)
{
    QColor tint = colour(style);
    tint.setAlphaF(0.14F);
    const QRectF cells(place.x(), place.y() - m_font.ascent(), cluster.cells * m_font.cellWidth(), m_font.rowHeight());
    m_painter.fillRect(cells.adjusted(0.5, 1, -0.5, -1), tint);
    for (const char character : outputSymbolName(cluster.first)) {
        addGlyph(static_cast<unsigned char>(character), place);
        place.rx() += m_font.cellWidth();
    }
}

/// Draws a character centred in its cells, pressed into them where the font is wider. `place` is on the baseline.
void OutputPanePainter::drawAlone(const DisplayCluster &cluster, QByteArrayView text, QPointF place)
{
    const CellFont::Shaped *const shaped = m_font.shaped(text.sliced(cluster.begin, cluster.size));
    if (shaped == nullptr)
        return;
    const double width = cluster.cells * m_font.cellWidth();
    const double scale = shaped->width > width ? width / shaped->width : 1;
    // On a whole pixel of the screen, so that equal characters look equal.
    const double ratio = m_painter.device()->devicePixelRatioF();
    const double x = std::round((place.x() + (width - scale * shaped->width) / 2) * ratio) / ratio;
    const QPointF origin(x, place.y() - shaped->ascent);
    if (scale == 1) {
        for (const QGlyphRun &run : shaped->glyphs)
            m_painter.drawGlyphRun(origin, run);
        return;
    }
    m_painter.save();
    m_painter.translate(origin);
    m_painter.scale(scale, 1);
    for (const QGlyphRun &run : shaped->glyphs)
        m_painter.drawGlyphRun(QPointF(), run);
    m_painter.restore();
}

void OutputPanePainter::drawJoined(const OutputPaneRow::Joined &joined, const std::vector<Style> &styles, QPointF place)
{
    QList<QTextLayout::FormatRange> formats;
    for (std::size_t index = joined.first; index < joined.end; ++index) {
        const int start = joined.starts[index - joined.first];
        QTextLayout::FormatRange range{start, joined.starts[index - joined.first + 1] - start, {}};
        range.format.setForeground(colour(styles[index]));
        if (const QColor *const behind = ground(styles[index]))
            range.format.setBackground(*behind);
        formats.append(range);
    }
    m_painter.save();
    m_painter.translate(place.x() + joined.x, place.y() + m_font.ascent() - joined.layout->lineAt(0).ascent());
    m_painter.scale(joined.scale, 1);
    joined.layout->draw(&m_painter, QPointF(), formats);
    m_painter.restore();
}

void OutputPanePainter::flush(Style style)
{
    if (m_glyphs.isEmpty())
        return;
    QGlyphRun run;
    run.setRawFont(m_font.rawFont());
    run.setRawData(m_glyphs.constData(), m_places.constData(), static_cast<int>(m_glyphs.size()));
    m_painter.setPen(colour(style));
    m_painter.drawGlyphRun(QPointF(), run);
    m_glyphs.clear();
    m_places.clear();
}
