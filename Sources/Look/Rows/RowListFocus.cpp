// Where the focus goes in a RowList, and what the keys and the pointer do there.

#include "Look/Rows/RowList.h"
#include "Look/Rows/RowListAccessibility.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>

#include <algorithm>

void RowList::setVisible(bool isVisible)
{
    if (!isVisible && focusedRow() != nullptr)
        Q_EMIT focusLeft();
    QScrollArea::setVisible(isVisible);
}

bool RowList::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
        if (m_guard.refuses(static_cast<QMouseEvent *>(event)->globalPosition().toPoint()))
            return true;
    } else if (event->type() == QEvent::MouseButtonRelease) {
        m_guard.setPlace(static_cast<QMouseEvent *>(event)->globalPosition().toPoint());
    }
    const bool isFocus = event->type() == QEvent::FocusIn;
    if (isFocus || event->type() == QEvent::KeyPress) {
        auto *row = qobject_cast<RowWidget *>(watched);
        if (row == nullptr)
            row = qobject_cast<RowWidget *>(watched->parent());
        if (row != nullptr && row->index() >= 0) {
            if (isFocus)
                rowFocused(row, static_cast<QFocusEvent *>(event)->reason());
            else if (moveFocus(row, static_cast<QKeyEvent *>(event)->key()))
                return true;
        }
    }
    return QScrollArea::eventFilter(watched, event);
}

void RowList::linkIntoTabOrder(std::map<int, RowWidget *>::iterator position)
{
    QWidget *before = m_content;
    if (position != m_widgets.begin())
        before = std::prev(position)->second->buttons().last();
    QWidget::setTabOrder(before, position->second);
    before = position->second;
    for (QPushButton *button : position->second->buttons()) {
        QWidget::setTabOrder(before, button);
        before = button;
    }
}

void RowList::rowFocused(const RowWidget *row, Qt::FocusReason reason)
{
    m_column = row->focusedButton().value_or(m_column);
    makeNeededWidgets();
    // A press must not move the button away from under the pointer, and a refresh (which gives no reason) must not
    // scroll.
    if (reason != Qt::MouseFocusReason && reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
        reason != Qt::NoFocusReason)
        ensureVisible(0, row->y() + row->height() / 2, 0, (row->height() + 1) / 2);
}

bool RowList::moveFocus(const RowWidget *row, int key)
{
    const int page = std::max(1, viewport()->height() / std::max(1, row->height()) - 1);
    int target = row->index();
    switch (key) {
    case Qt::Key_Up:
        target -= 1;
        break;
    case Qt::Key_Down:
        target += 1;
        break;
    case Qt::Key_PageUp:
        target -= page;
        break;
    case Qt::Key_PageDown:
        target += page;
        break;
    case Qt::Key_Home:
        target = 0;
        break;
    case Qt::Key_End:
        target = count() - 1;
        break;
    default:
        return false;
    }
    const int column = m_column;
    this->row(std::clamp(target, 0, count() - 1))->focusButton(column, Qt::OtherFocusReason);
    m_column = column;
    return true;
}

RowWidget *RowList::focusedRow() const
{
    QWidget *focused = window()->focusWidget();
    while (focused != nullptr && focused->parentWidget() != m_content)
        focused = focused->parentWidget();
    auto *row = qobject_cast<RowWidget *>(focused);
    return row != nullptr && row->index() >= 0 ? row : nullptr;
}
