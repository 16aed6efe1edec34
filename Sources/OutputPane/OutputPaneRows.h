#pragma once

// Where the rows of the output pane begin when lines wrap at a number of columns. Rows are found block by block, only
// for the blocks that are looked at; all other blocks are estimated from what the text store knows of them, exactly
// where no line of theirs wraps. So a change of width or a hundred megabytes more costs one screenful.
//
// Main thread only. Everything is asked of the text as it is at that moment; nothing needs to be told of changes.

#include "OutputPane/OutputPaneRowCount.h"
#include "Transcript/TextStore.h"

#include <QtGlobal>

#include <list>
#include <vector>

class OutputPaneRows
{
public:
    using Position = TextStore::Position;

    /// A row by its block and its place therein; good until the text or the number of columns changes.
    struct Row {
        TextStore::BlockNumber block = 0;
        int index = 0;

        friend bool operator==(const Row &, const Row &) = default;
    };

    explicit OutputPaneRows(const TextStore &text) : m_text(text), m_count(text) {}

    const TextStore &text() const { return m_text; }
    int columns() const { return m_columns; }
    /// At least one.
    void setColumns(int columns);

    /// With no text there are no rows, and none of the following may be called but count().
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
    /// The row's text, valid as long as what TextStore::bytes gives.
    QByteArrayView bytes(const Row &row);

    /// How many rows there are: exact for blocks seen before at this width and for those whose lines do not wrap, else
    /// estimated.
    qint64 count() { return m_count.all(); }
    /// How many rows, counted in the same way, stand before this one.
    qint64 countBefore(const Row &row);
    /// The row with that many before it, or the nearest there is.
    Row atCount(qint64 rows);

private:
    struct Layout {
        TextStore::BlockNumber block = 0;
        Position begin = 0;
        qsizetype size = 0;
        /// The row starts, in bytes from the block's begin.
        std::vector<qint32> starts = {};
        bool endsText = false;
    };
    const Layout &layout(TextStore::BlockNumber number);
    void extend(Layout &layout, QByteArrayView text) const;

    const TextStore &m_text;
    int m_columns = 80;
    /// The layouts used last, newest first.
    std::list<Layout> m_layouts;
    OutputPaneRowCount m_count;
};
