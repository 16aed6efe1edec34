#pragma once

// What assistive technology sees of a RowList: a list with all its rows, also those that are no widgets yet.

#include <QWidget>

class RowList;

/// The widget that holds the rows.
class RowListContent : public QWidget
{
    Q_OBJECT

public:
    /// `list` must outlive it.
    explicit RowListContent(RowList &list) : m_list(list) {}

    RowList &list() const { return m_list; }

private:
    RowList &m_list;
};

namespace RowListAccessibility
{

/// Makes the lists known to the accessibility interface; any number of calls.
void install();

} // namespace RowListAccessibility
