#pragma once

// Draws rows of the output pane: selection and matches, runs of ASCII straight from their glyph numbers, other
// characters from the font's memory, joined scripts as shaped texts.

#include "OutputPane/OutputPaneRow.h"
#include "Transcript/OutputSegment.h"

#include <QColor>
#include <QPainter>
#include <QPalette>

#include <array>
#include <vector>

class OutputPanePainter
{
public:
    /// How one cluster looks beside its shape.
    struct Style {
        OutputKind kind = OutputKind::out;
        bool isSelected = false;
        /// It belongs to a match of what is being looked for.
        bool isFound = false;

        friend bool operator==(const Style &, const Style &) = default;
    };

    /// The text colour of a piece of output. `fail` is purple because red belongs to standard error alone.
    static QColor colourOf(OutputKind kind, const QPalette &palette);

    /// The painter and the font must outlive it; the colours are those of the palette now.
    OutputPanePainter(QPainter &painter, CellFont &font, const QPalette &palette);

    /// Draws a row with its top left corner at `place`; one style for each of its clusters.
    void draw(const OutputPaneRow &row, QByteArrayView text, const std::vector<Style> &styles, QPointF place);

private:
    const QColor &colour(Style style) const;
    const QColor *ground(Style style) const;
    void drawGround(const OutputPaneRow &row, const std::vector<Style> &styles, QPointF place);
    void drawClusters(const OutputPaneRow &row, QByteArrayView text, const std::vector<Style> &styles, QPointF place);
    void drawJoined(const OutputPaneRow::Joined &joined, const std::vector<Style> &styles, QPointF place);
    void addGlyph(char32_t character, QPointF place);
    void addSymbol(const DisplayCluster &cluster, Style style, QPointF place);
    void drawAlone(const DisplayCluster &cluster, QByteArrayView text, QPointF place);
    void flush(Style style);

    QPainter &m_painter;
    CellFont &m_font;
    std::array<QColor, 6> m_kinds;
    QColor m_highlight;
    QColor m_highlightedText;
    QColor m_found;
    /// The ASCII glyphs of one style that wait to be drawn together.
    QList<quint32> m_glyphs;
    QList<QPointF> m_places;
};
