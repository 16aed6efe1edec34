#pragma once

// Where one row of the output pane ends. Pure functions.

#include "OutputPane/OutputPaneClusters.h"

#include <QByteArrayView>

namespace OutputPaneRowBreak
{

/// The end of the row that begins at `from`: behind a line end, before the first cluster that does not fit into
/// `columns` cells, or the end of the text. A row holds at least one cluster.
qsizetype rowEnd(QByteArrayView text, qsizetype from, int columns);

/// Gives the cluster its place at `column`, which moves behind it; false when it does not fit any more.
bool place(OutputCluster &cluster, int &column, int columns);

} // namespace OutputPaneRowBreak
