#pragma once

// Where the rows of the output pane begin when lines wrap at a number of columns. Rows are found block by block, only
// for the blocks that are looked at; how many rows there are is estimated from line feeds and lengths, which is all
// that a scroll bar needs. So a change of width or a hundred megabytes more costs one screenful.
//
// Main thread only. Everything is asked of the text as it is at that moment; nothing needs to be told of changes.

#include "OutputPane/OutputPaneRow.h"
#include "Transcript/TextView.h"

#include <QtGlobal>

#include <list>
#include <vector>

class OutputPaneRows
{
public:
    using Position = TextView::Position;

    /// A row by its block and its place therein; good until the text or the number of columns changes.
    struct Row {
        TextView::BlockNumber block = 0;
        int index = 0;

        friend bool operator==(const Row &, const Row &) = default;
    };

    /// `text` must outlive the rows.
    explicit OutputPaneRows(const TextView &text) : m_text(text) {}

    const TextView &text() const { return m_text; }
    int columns() const { return m_columns; }
    /// At least one.
    void setColumns(int columns);

    /// With no text there are no rows, and none of the following may be called.
    bool isEmpty() const { return m_text.isEmpty(); }
    Row first() { return {m_text.firstBlock(), 0}; }
    Row last();
    /// The row that holds `position`; where two rows meet, the later one.
    Row at(Position position);
    /// Moves to the row after; false when there is none.
    bool next(Row &row);
    /// Moves to the row before; false when there is none.
    bool previous(Row &row);
    Position begin(const Row &row);
    /// Behind the row's last character, which may be a line end.
    Position end(const Row &row);
    /// The row's text, valid as long as what TextView::bytes gives: to be used at once.
    QByteArrayView bytes(const Row &row);
    /// The row, laid out. `font` must outlive what is returned.
    OutputPaneRow layOut(const Row &row, const CellFont &font) { return {bytes(row), m_columns, font}; }

    /// A row, or a part of one: 0.5 is half way through it.
    struct Place {
        Row row;
        double part = 0;
    };
    /// About how many rows stand before a place: exact as long as no line before it or in its block wraps or has more
    /// UTF-16 units than columns (accents, and a CR before the line feed, are units too), in proportion elsewhere, and
    /// never fewer for a later place.
    double estimateBefore(const Place &place);
    /// The place before which that many rows are estimated, or the last row.
    Place atEstimate(double rows);

private:
    struct Layout {
        TextView::BlockNumber block = 0;
        Position begin = 0;
        qsizetype size = 0;
        /// The row starts, in bytes from the block's begin.
        std::vector<qint32> starts = {};
        bool endsText = false;
    };
    const Layout &layout(TextView::BlockNumber number);
    qint64 estimate(TextView::BlockNumber from, TextView::BlockNumber to) const;
    qint64 stretchLength() const;
    qint64 estimateBefore(TextView::BlockNumber number) const;
    void extend(Layout &layout, QByteArrayView text) const;

    const TextView &m_text;
    int m_columns = 80;
    /// The layouts used last, newest first.
    std::list<Layout> m_layouts;
};
