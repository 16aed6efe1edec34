#pragma once

// Where things stand in a window.

#include "Support/Waiting.h"

#include <QList>
#include <QRect>
#include <QWidget>

#include <gtest/gtest.h>

namespace Places
{

/// A widget's place in `root`, which is around it; a failed expectation when there is no such widget.
inline QRect in(const QWidget &root, const QWidget *widget)
{
    EXPECT_NE(widget, nullptr) << "what should stand there is missing";
    return widget != nullptr ? QRect(widget->mapTo(&root, QPoint()), widget->size()) : QRect();
}

/// The points between the right edge of each and the left edge of the next; negative where they overlap or stand in
/// another order.
inline QList<int> gapsBeside(const QWidget &root, const QList<const QWidget *> &widgets)
{
    QList<int> gaps;
    for (qsizetype index = 1; index < widgets.size(); ++index)
        gaps.append(in(root, widgets[index]).left() - in(root, widgets[index - 1]).right() - 1);
    return gaps;
}

/// The points between the lower edge of each row and the upper edge of the next, a row being as high as the highest
/// widget in it.
inline QList<int> gapsBelow(const QWidget &root, const QList<QList<const QWidget *>> &rows)
{
    QList<QRect> places;
    for (const QList<const QWidget *> &row : rows) {
        QRect place;
        for (const QWidget *widget : row)
            place |= in(root, widget);
        places.append(place);
    }
    QList<int> gaps;
    for (qsizetype index = 1; index < places.size(); ++index)
        gaps.append(places[index].top() - places[index - 1].bottom() - 1);
    return gaps;
}

/// Expects a value that is measured anew until it holds or the window must long have been laid out.
template <typename Measure, typename Value>
void expectSoon(const Measure &measure, const Value &expected)
{
    waitUntil([&] { return measure() == expected; }, std::chrono::milliseconds(2000));
    EXPECT_EQ(measure(), expected);
}

} // namespace Places
