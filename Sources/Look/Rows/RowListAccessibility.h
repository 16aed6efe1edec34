#pragma once

// What assistive technology sees of a RowList: a list with all its rows, also those that are no widgets yet.

#include "Look/Rows/UnmadeRows.h"

#include <QWidget>

class RowList;

/// The widget that holds the rows.
class RowListContent : public QWidget
{
    Q_OBJECT

public:
    /// `list` must outlive it.
    explicit RowListContent(RowList &list) : m_list(list), m_unmade(list) {}

    RowList &list() const { return m_list; }
    UnmadeRows &unmade() { return m_unmade; }

private:
    RowList &m_list;
    UnmadeRows m_unmade;
};

namespace RowListAccessibility
{

/// Makes the lists known to the accessibility interface; any number of calls.
void install();

} // namespace RowListAccessibility
