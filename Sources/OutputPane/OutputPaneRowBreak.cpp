#include "OutputPane/OutputPaneRowBreak.h"

#include <algorithm>

namespace
{

constexpr int tabWidth = 8;

bool isPrintableAscii(char byte)
{
    return byte >= 0x20 && byte < 0x7f;
}

} // namespace

qsizetype OutputPaneRowBreak::rowEnd(QByteArrayView text, qsizetype from, int columns)
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

    OutputPaneClusters clusters(text, from);
    OutputCluster cluster;
    int column = 0;
    while (clusters.next(cluster)) {
        if (!place(cluster, column, columns))
            return cluster.begin;
        if (cluster.look == OutputCluster::Look::lineEnd)
            return cluster.end();
    }
    return text.size();
}

bool OutputPaneRowBreak::place(OutputCluster &cluster, int &column, int columns)
{
    if (cluster.look == OutputCluster::Look::tab) {
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
