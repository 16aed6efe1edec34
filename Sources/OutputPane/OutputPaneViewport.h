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

    explicit OutputPaneViewport(OutputPaneRows &rows) : m_rows(rows) {}

    void setHeights(int viewport, int row);

    std::vector<VisibleRow> visibleRows();

    bool isAtEnd() const { return m_isAtEnd; }
    void scrollToEnd() { m_isAtEnd = true; }
    /// Stays where it is, also at the end; whoever scrolls next, or lets go, may be at the end again.
    void hold();
    void letGo() { scrollBy(0); }
    /// Scrolls down, or up by a negative number; not past the ends.
    void scrollBy(qint64 pixels);
    /// Scrolls to a place among the whole content, as near as the count of rows is known.
    void scrollTo(qint64 pixels);
    /// Scrolls as little as needed to show the row.
    void show(const Row &row);

    /// Height of the whole content, as far as the count of rows is known.
    qint64 contentHeight();
    /// How much of the content is above the viewport, counted in the same way.
    qint64 contentAbove();

private:
    struct Top {
        Row row;
        /// How much of that row is above the viewport; negative by the padding at the very start.
        qint64 above = 0;
    };

    static bool isBefore(const Top &one, const Top &other);
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
