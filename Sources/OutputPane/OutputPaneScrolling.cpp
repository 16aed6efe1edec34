// What the pane does with its place in the text: by the scroll bar, to a position, to the end.

#include "OutputPane/OutputPane.h"

#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace
{

/// The scroll bar counts in int; beyond this many pixels each of its steps is several.
constexpr qint64 mostSteps = 1'000'000'000;

} // namespace

void OutputPane::updateScrollBar()
{
    tellWhetherEndShows();
    QScrollBar *const bar = verticalScrollBar();
    // A slider in the user's hand stays where it is.
    if (bar->isSliderDown())
        return;
    // Always there when there is something to show, so that no line is broken anew because it comes or goes.
    setVerticalScrollBarPolicy(isBlank() ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAlwaysOn);
    const QScopedValueRollback updating(m_updatesScrollBar, true);
    const qint64 most = m_view.mostAbove();
    m_pixelsPerStep = 1 + most / mostSteps;
    const auto steps = [this](qint64 pixels) { return static_cast<int>(pixels / m_pixelsPerStep); };
    bar->setRange(0, steps(most));
    bar->setPageStep(std::max(1, steps(viewport()->height())));
    bar->setSingleStep(std::max(1, steps(m_font.rowHeight())));
    // Its end stands for the end alone, so that there is always some way left to drag it.
    bar->setValue(m_view.isAtEnd() ? bar->maximum() : std::min(steps(m_view.contentAbove()), bar->maximum() - 1));
}

/// The bar was moved by the user, or by a program that drives it.
void OutputPane::scrollContentsBy(int /*dx*/, int dy)
{
    if (m_updatesScrollBar || dy == 0)
        return;
    const QScrollBar *const bar = verticalScrollBar();
    if (bar->value() == bar->maximum())
        m_view.scrollToEnd();
    else
        m_view.scrollTo(bar->value() * m_pixelsPerStep);
    tellWhetherEndShows();
    viewport()->update();
}

/// Steps and pages go by true pixels, also where the bar's own steps are coarser or its length only estimated.
void OutputPane::scrollByStep(int action)
{
    const int page = std::max(m_font.rowHeight(), viewport()->height() - m_font.rowHeight());
    switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
        m_view.scrollBy(m_font.rowHeight());
        break;
    case QAbstractSlider::SliderSingleStepSub:
        m_view.scrollBy(-m_font.rowHeight());
        break;
    case QAbstractSlider::SliderPageStepAdd:
        m_view.scrollBy(page);
        break;
    case QAbstractSlider::SliderPageStepSub:
        m_view.scrollBy(-page);
        break;
    default:
        return;
    }
    updateView();
}

void OutputPane::jumpToEnd()
{
    m_view.scrollToEnd();
    if (m_cursor.isEmpty())
        m_cursor.moveTo({m_text.end(), false});
    updateView();
}

void OutputPane::tellWhetherEndShows()
{
    const bool showsEnd = m_view.showsEnd();
    if (showsEnd != std::exchange(m_showsEnd, showsEnd))
        Q_EMIT showsEndChanged(showsEnd);
}

void OutputPane::scrollTo(Position position)
{
    if (m_rows.isEmpty())
        return;
    m_view.show(m_rows.at(position));
    keepPlaceOfSelection();
    updateView();
}
