#include "Look/Rows/RowList.h"

#include "Look/RoundedFrame.h"
#include "Look/Rows/RowListAccessibility.h"

#include <QAccessible>
#include <QPushButton>
#include <QScrollBar>

#include <algorithm>
#include <cstdlib>
#include <utility>

RowList::RowList(const QString &name, QWidget *parent) : QScrollArea(parent), m_content(new RowListContent(*this))
{
    RowListAccessibility::install();
    m_content->setAccessibleName(name);
    m_content->setBackgroundRole(QPalette::Base);
    m_content->setAutoFillBackground(true);
    // The tab order of the rows hangs on it, and a widget that takes no focus at all cannot be part of that order.
    m_content->setFocusPolicy(Qt::ClickFocus);
    new RoundedFrame(RoundedFrame::Ground::field, this);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    setWidget(m_content);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &RowList::makeNeededWidgets);
    measure();
}

void RowList::setRows(const QList<RowContent> &rows)
{
    if (rows == m_rows)
        return;
    const RowIdentities later(rows);
    const std::optional<int> anchor = rowKeptInPlace(later);
    const int anchorLater = anchor ? m_identities.placeIn(later, *anchor) : -1;
    const int anchorOffset = anchor ? verticalScrollBar()->value() - edge(*anchor) : 0;

    const int clicked = indexClicked();
    const int clickedLater = clicked >= 0 ? m_identities.placeIn(later, clicked) : -1;

    const RowWidget *focused = focusedRow();
    const bool focusedLeaves = focused != nullptr && m_identities.placeIn(later, focused->index()) < 0;
    const int focusLater = focusedLeaves ? m_identities.neighbourPlaceIn(later, focused->index()) : -1;
    const int focusedButton = focused != nullptr ? focused->focusedButton().value_or(0) : 0;

    if (!(later == m_identities))
        m_content->unmade().forgetAll();
    QList<RowWidget *> leaving;
    bool isOrderKept = true;
    int last = -1;
    for (const auto &[index, row] : std::exchange(m_widgets, {})) {
        const int newIndex = m_identities.placeIn(later, index);
        row->setIndex(newIndex);
        if (newIndex < 0) {
            leaving.append(row);
            continue;
        }
        isOrderKept = isOrderKept && newIndex > last;
        last = newIndex;
        m_widgets.emplace(newIndex, row);
    }
    m_rows = rows;
    m_identities = later;
    measure();
    // A copy, because a row that moves the focus makes or retires others.
    const std::map<int, RowWidget *> staying = m_widgets;
    for (const auto &[index, row] : staying) {
        row->setContent(m_rows[index]);
        place(row);
    }
    if (!isOrderKept) {
        for (auto position = m_widgets.begin(); position != m_widgets.end(); ++position)
            linkIntoTabOrder(position);
    }
    if (anchor)
        verticalScrollBar()->setValue(edge(anchorLater) + anchorOffset);
    makeNeededWidgets();
    if (clicked >= 0 && clickedLater != indexClicked())
        m_guard.placeChanged();
    if (focusedLeaves && count() > 0)
        row(std::min(focusLater, count() - 1))->focusButton(focusedButton, Qt::NoFocusReason);
    else if (focusedLeaves)
        Q_EMIT focusLeft();
    for (RowWidget *row : std::as_const(leaving))
        retire(row);
}

std::optional<int> RowList::rowKeptInPlace(const RowIdentities &later) const
{
    // The pointer that holds a button must find it where it was when it lets go.
    for (const auto &[index, row] : m_widgets) {
        if (row->isPressed() && m_identities.placeIn(later, index) >= 0)
            return index;
    }
    // At the very top the new first row is what the user wants to see.
    const int scrolled = verticalScrollBar()->value();
    if (scrolled == 0)
        return std::nullopt;
    for (int index = std::max(0, indexAt(scrolled)); index < count(); ++index) {
        if (m_identities.placeIn(later, index) >= 0)
            return index;
    }
    return std::nullopt;
}

RowWidget *RowList::row(int index)
{
    if (RowWidget *made = madeRow(index))
        return made;
    m_content->unmade().forget(index);
    auto *row = new RowWidget(m_rows[index], m_content);
    row->setIndex(index);
    row->installEventFilter(this);
    for (QPushButton *button : row->buttons())
        button->installEventFilter(this);
    connect(row, &RowWidget::pressed, this, [this, row](int action) {
        if (row->index() >= 0)
            Q_EMIT pressed(row->index(), action);
    });
    linkIntoTabOrder(m_widgets.emplace(index, row).first);
    place(row);
    row->show();
    return row;
}

RowWidget *RowList::madeRow(int index) const
{
    const auto found = m_widgets.find(index);
    return found != m_widgets.end() ? found->second : nullptr;
}

QRect RowList::placeOnScreen(int index) const
{
    return {m_content->mapToGlobal(QPoint(0, edge(index))), QSize(m_content->width(), edge(index + 1) - edge(index))};
}

int RowList::indexClicked() const
{
    return indexAt(m_content->mapFromGlobal(m_guard.place()).y());
}

int RowList::indexAt(int y) const
{
    if (y < 0 || y >= m_edges.back())
        return -1;
    return static_cast<int>(std::upper_bound(m_edges.begin(), m_edges.end(), y) - m_edges.begin()) - 1;
}

void RowList::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    measure();
    for (const auto &[index, row] : m_widgets)
        place(row);
    makeNeededWidgets();
}

void RowList::changeEvent(QEvent *event)
{
    QScrollArea::changeEvent(event);
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange)
        return;
    m_metrics = RowMetrics::current();
    const int scrolled = verticalScrollBar()->value();
    const RowWidget *focused = focusedRow();
    const int focusedIndex = focused != nullptr ? focused->index() : -1;
    const int focusedButton = focused != nullptr ? focused->focusedButton().value_or(0) : 0;
    const QList<RowContent> rows = m_rows;
    setRows({});
    setRows(rows);
    if (focusedIndex >= 0)
        row(focusedIndex)->focusButton(focusedButton, Qt::NoFocusReason);
    verticalScrollBar()->setValue(scrolled);
}

void RowList::measure()
{
    m_edges.resize(1);
    m_edges.reserve(static_cast<std::size_t>(count()) + 1);
    for (const RowContent &row : std::as_const(m_rows))
        m_edges.push_back(m_edges.back() + m_metrics.heightOf(row));
    m_content->resize(viewport()->width(), m_edges.back());
}

void RowList::place(RowWidget *row)
{
    const int top = edge(row->index());
    row->setGeometry(0, top, m_content->width(), edge(row->index() + 1) - top);
}

void RowList::retire(RowWidget *row)
{
    // Later, because it may be in the middle of telling that it was pressed.
    row->hide();
    row->deleteLater();
}

void RowList::makeNeededWidgets()
{
    if (m_rows.isEmpty())
        return;
    const int end = count() - 1;
    const int top = verticalScrollBar()->value();
    const int first = std::max(0, indexAt(top));
    const int below = indexAt(top + viewport()->height() - 1);
    const int last = below < 0 ? end : below;
    row(0);
    for (int index = std::max(0, first - 1); index <= std::min(end, last + 1); ++index)
        row(index);
    row(end);
    if (const RowWidget *focused = focusedRow()) {
        row(std::max(0, focused->index() - 1));
        row(std::min(end, focused->index() + 1));
    }
    // Assistive technology may hold on to any row that it has seen.
    if (!QAccessible::isActive())
        retireFarWidgets(first, last);
}

void RowList::retireFarWidgets(int first, int last)
{
    const int page = last - first + 1;
    const RowWidget *focused = focusedRow();
    for (auto position = m_widgets.begin(); position != m_widgets.end();) {
        const auto [index, row] = *position;
        const bool isNear = index >= first - page && index <= last + page;
        const bool isEnd = index == 0 || index == count() - 1;
        const bool isBesideFocus = focused != nullptr && std::abs(index - focused->index()) <= 1;
        if (isNear || isEnd || isBesideFocus || row->isPressed()) {
            ++position;
        } else {
            position = m_widgets.erase(position);
            retire(row);
        }
    }
}
