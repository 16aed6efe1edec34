#pragma once

// One row of the output pane, laid out: its characters in their cells, and the stretches that must be shaped together
// because their script joins letters or runs from right to left. Everything is measured from the row's left edge.

#include "Look/CellFont.h"
#include "Text/DisplayClusters.h"

#include <QByteArrayView>

#include <memory>
#include <optional>
#include <vector>

class OutputPaneRow
{
public:
    /// A stretch of clusters that is shaped as one text and pressed into its cells. There is none as long as its font
    /// could not be opened in time.
    struct Joined {
        std::size_t first = 0;
        std::size_t end = 0;
        double x = 0;
        double width = 0;
        /// Horizontal scale, below 1 where the font is wider than the cells.
        double scale = 1;
        std::unique_ptr<QTextLayout> layout = {};
        /// Where each cluster starts in the layout's text, and its length at last.
        std::vector<int> starts = {};
    };

    /// The end of the row that begins at `from`: behind a line end, before the first cluster that does not fit into
    /// `columns` cells, or the end of the text. A row holds at least one cluster.
    static qsizetype endOf(QByteArrayView text, qsizetype from, int columns);
    /// Gives the cluster its place at `column`, which moves behind it; false when it does not fit any more.
    static bool place(DisplayCluster &cluster, int &column, int columns);

    /// `text` is the row's bytes, needed no longer than this takes; `columns` the width at which it was broken. `font`
    /// must outlive the row.
    OutputPaneRow(QByteArrayView text, int columns, const CellFont &font);

    const std::vector<DisplayCluster> &clusters() const { return m_clusters; }
    const std::vector<Joined> &joined() const { return m_joined; }

    /// The joined stretch that holds the cluster, if any.
    const Joined *joinedAt(std::size_t index) const;

    /// The index of the cluster that holds the byte, or the number of clusters behind the last.
    std::size_t indexOf(qint64 byte) const;
    /// Where the caret stands before that byte.
    double xOf(qint64 byte) const;
    /// From where to where the cluster that holds the byte is drawn; nothing behind the last.
    struct Extent {
        double left = 0;
        double right = 0;
    };
    Extent extentOf(qint64 byte) const;
    /// The byte before which the caret comes to stand nearest to `x`: never behind a line end.
    qint64 byteNearest(double x) const;
    /// The byte of the cluster drawn at `x`, the nearest one beside the text.
    qint64 byteAt(double x) const;
    /// Behind the last character that is not a line end.
    qint64 endOfText() const;

private:
    void join(QByteArrayView text);
    std::size_t rightToLeftEnd(std::size_t first) const;
    void addJoined(QByteArrayView text, std::size_t first, std::size_t end, Qt::LayoutDirection direction);
    double before(std::size_t index) const;
    double after(std::size_t index) const;
    Extent extent(std::size_t index) const;
    std::optional<std::size_t> nearest(double x) const;

    const CellFont &m_font;
    std::vector<DisplayCluster> m_clusters;
    std::vector<Joined> m_joined;
};
