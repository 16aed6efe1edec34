#pragma once

// Jumps with the scroll bar to places anywhere in the text of a pane, each until it is painted.

#include "FrameWatch.h"
#include "Heartbeat.h"
#include "OutputPane/OutputPane.h"

#include <QScrollBar>

#include <random>

/// The milliseconds that each of a hundred jumps took.
inline std::vector<double> jumpAbout(FrameWatch &frames, OutputPane &pane)
{
    std::mt19937 random(1);
    std::vector<double> times;
    for (int jump = 0; jump < 100; ++jump) {
        const int place = std::uniform_int_distribution<int>(0, pane.verticalScrollBar()->maximum())(random);
        frames.watch(pane.viewport());
        const auto start = std::chrono::steady_clock::now();
        pane.verticalScrollBar()->setValue(place);
        pane.viewport()->repaint();
        times.push_back(millisecondsSince(start));
        QApplication::processEvents();
    }
    return times;
}
