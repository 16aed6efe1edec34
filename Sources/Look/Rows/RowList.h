#pragma once

// A scrolling list of rows that are updated by identity: a refresh that changes nothing touches nothing, a changed row
// repaints alone, and focus, scroll position and a half-pressed button stay with their row while others come and go.
//
// Rows become widgets only where they are needed: in view, beside the focus, at both ends (so that Tab enters from
// either side as if all were there). A list of thousands costs what is seen, also when assistive technology asks for
// all of it. Of two quick clicks the second does not reach the row that the first has moved under the pointer. Tab
// moves through the buttons row by row; the arrow keys, Page Up and Down, Home and End move from row to row.

#include "Look/ClickGuard.h"
#include "Look/Rows/RowIdentities.h"
#include "Look/Rows/RowWidget.h"

#include <QScrollArea>

#include <map>
#include <optional>
#include <vector>

class RowListContent;

class RowList : public QScrollArea
{
    Q_OBJECT

public:
    /// `name` is the accessible name of the list.
    explicit RowList(const QString &name, QWidget *parent = nullptr);

    /// Shows these rows in this order. Two of the same identity are both shown.
    void setRows(const QList<RowContent> &rows);

    const QList<RowContent> &rows() const { return m_rows; }
    int count() const { return static_cast<int>(m_rows.size()); }

    /// The row as a widget, made now if need be.
    RowWidget *row(int index);

    /// The row's widget; null when it has none.
    RowWidget *madeRow(int index) const;

    /// Where the row is, in view or not.
    QRect placeOnScreen(int index) const;

    /// The row at this height of the whole list; -1 when there is none.
    int indexAt(int y) const;

    /// How many rows are widgets now.
    int widgetCount() const { return static_cast<int>(m_widgets.size()); }

    void setVisible(bool isVisible) override;

Q_SIGNALS:
    /// The button with this action was pressed in the row at this place. (An identity would not do: two rows may have
    /// the same.)
    void pressed(int row, int action);

    /// The row with the focus is about to go, and no row is left to take it: the focus must go elsewhere now, or Qt
    /// gives it to whatever comes next in the window.
    void focusLeft();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    int indexClicked() const;
    std::optional<int> rowKeptInPlace(const RowIdentities &later) const;
    int edge(int index) const { return m_edges[static_cast<std::size_t>(index)]; }
    void measure();
    void place(RowWidget *row);
    void linkIntoTabOrder(std::map<int, RowWidget *>::iterator position);
    void retire(RowWidget *row);
    void makeNeededWidgets();
    void retireFarWidgets(int first, int last);
    void rowFocused(const RowWidget *row, Qt::FocusReason reason);
    bool moveFocus(const RowWidget *row, int key);
    RowWidget *focusedRow() const;

    QList<RowContent> m_rows;
    RowIdentities m_identities;
    /// The upper edge of each row, and the lower edge of the last.
    std::vector<int> m_edges{0};
    RowMetrics m_metrics = RowMetrics::current();
    RowListContent *m_content;
    std::map<int, RowWidget *> m_widgets;
    /// The button to return to while the arrow keys pass rows in which it is disabled.
    int m_column = 0;
    ClickGuard m_guard;
};
