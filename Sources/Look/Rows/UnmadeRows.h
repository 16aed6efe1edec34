#pragma once

// What assistive technology sees of the rows of a list that are no widgets: each a group with its texts and buttons, at
// a cost of microseconds, where a widget costs a millisecond. A press makes the widget, which then takes the place of
// what is here.

#include <QAccessible>
#include <QHash>

class RowList;

class UnmadeRows
{
public:
    /// `list` must outlive this.
    explicit UnmadeRows(RowList &list) : m_list(list) {}
    ~UnmadeRows() { forgetAll(); }

    UnmadeRows(const UnmadeRows &) = delete;
    UnmadeRows &operator=(const UnmadeRows &) = delete;

    /// The row at this place, which must be in the list.
    QAccessibleInterface *at(int index);

    /// The place of a row that was given out here; -1 for anything else.
    int indexOf(const QAccessibleInterface *row) const;

    /// The row is a widget now.
    void forget(int index);
    /// There are other rows now.
    void forgetAll();

private:
    RowList &m_list;
    QHash<int, QAccessible::Id> m_ids;
};
