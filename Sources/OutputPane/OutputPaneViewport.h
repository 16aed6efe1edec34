#pragma once

// Which rows of the output stand where in the pane: the scroll position, held as a place in the text (so that neither a
// new width nor a dropped front moves what the reader looks at, and the width of before brings it back) or as "the
// end", which stays the end. Heights are pixels. The whole content is the rows with a padding above and below, and one
// pixel more at the very bottom.

#include "OutputPane/OutputPaneRows.h"

#include <vector>

class OutputPaneViewport
{
public:
    using Position = OutputPaneRows::Position;
    using Row = OutputPaneRows::Row;

    /// With the pane's frame, 8 pixels.
    static constexpr int padding = 6;

    struct VisibleRow {
        Row row;
        /// Top edge in the viewport; the first may begin above it.
        int y = 0;
    };

    /// `rows` must outlive the viewport.
    explicit OutputPaneViewport(OutputPaneRows &rows) : m_rows(rows) {}

    /// Pixels; the row height at least one.
    void setHeights(int viewport, int row);
    int height() const { return m_viewportHeight; }
    int rowHeight() const { return m_rowHeight; }
    bool isEmpty() const { return m_rows.isEmpty(); }

    /// The rows of which anything is in the viewport, from the top; none without text.
    std::vector<VisibleRow> visibleRows();
    /// The visible row at a height in the viewport, or the nearest. There must be text.
    Row rowAt(int y);

    bool isAtEnd() const { return m_isAtEnd; }
    /// The end is in view, whether or not that is so because it stays there.
    bool showsEnd();
    void scrollToEnd() { m_isAtEnd = true; }
    /// Stays where it is, also at the end; whoever scrolls next, or lets go, may be at the end again.
    void hold();
    void letGo() { scrollBy(0); }
    /// Scrolls down, or up by a negative number; not past the ends.
    void scrollBy(qint64 pixels);
    /// Scrolls to where about so many pixels of the content are above the viewport: to the start for 0, to the end for
    /// mostAbove().
    void scrollTo(qint64 pixels);
    /// Scrolls as little as needed to show the row.
    void show(const Row &row);

    /// About how much of the content is above the viewport, which is all that the scroll bar shows: 0 at the start and
    /// there alone, and never less for a place further down.
    qint64 contentAbove();
    /// The same for the end; 0 when all of it fits.
    qint64 mostAbove();

private:
    struct Top {
        Row row;
        /// How much of that row is above the viewport; negative by the padding at the very start.
        qint64 above = 0;
    };

    static bool isBefore(const Top &one, const Top &other);
    qint64 pixelsAbove(const Top &top);
    Top top();
    Top topAtEnd();
    Top within(Top top);
    void setTop(Top top);
    void keep(const Top &top);

    OutputPaneRows &m_rows;
    int m_viewportHeight = 0;
    int m_rowHeight = 1;
    bool m_isAtEnd = true;
    /// The start of the top row, when not at the end.
    Position m_topPosition = 0;
    qint64 m_above = -padding;
};
