#pragma once

// The scrolling view of runs' output: one selectable text, each piece coloured by its kind, wrapped at the pane's
// width. It is a view only: it draws the rows that are visible straight from the store of text, keeps no copy, and
// never writes to the controller. What an append does to the place in view is a matter of Following; while the user
// holds a mouse button here, nothing moves. However much arrives, the pane is brought up to date at most once a frame.

#include "Look/CellFont.h"
#include "OutputPane/OutputPaneAccessible.h"
#include "OutputPane/OutputPaneCursor.h"
#include "OutputPane/OutputPaneMarks.h"
#include "OutputPane/OutputPaneMouse.h"
#include "OutputPane/OutputPaneNavigation.h"
#include "OutputPane/OutputPaneRows.h"
#include "OutputPane/OutputPaneViewport.h"

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QTimer>

class RunController;
class Transcript;

class OutputPane : public QAbstractScrollArea
{
    Q_OBJECT

public:
    using Position = TextView::Position;

    /// How the pane goes with the end of the text.
    enum class Following {
        always,     ///< every append brings the end into view
        whileAtEnd, ///< the end stays in view, until the reader scrolls away from it or selects something
    };

    /// `text` is one of the views of the controller's transcript; `controller` must outlive the pane.
    OutputPane(RunController &controller, const TextView &text, QWidget *parent = nullptr,
               Following following = Following::always);

    const TextView &text() const { return m_text; }
    /// There is nothing to show: one line says where output appears.
    bool isBlank() const;

    const OutputPaneCursor &selection() const { return m_cursor; }
    /// Selects from one position to another, where the caret comes to stand.
    void select(Position from, Position to);
    /// The original characters, of all kinds of output alike.
    QString selectedText() const;

    /// The row that holds a position, as it is drawn.
    OutputPaneRow laidOutRow(Position position) { return m_rows.layOut(m_rows.at(position), m_font); }
    const OutputPaneNavigation &navigation() const { return m_navigation; }
    /// The position under a point of the viewport, or the nearest.
    Position positionAt(QPoint point);
    /// Where the character at a position is drawn in the viewport; empty when it is not in view.
    QRect characterRect(Position position);
    void scrollTo(Position position);
    /// From the first character in view to behind the last.
    OutputRange visibleRange();

    /// Marks every match in view from now on; none with an empty pattern.
    void mark(const TextPattern &pattern);
    /// Selects a match, and brings it into view unless it is there, with what is around it.
    void reveal(TextMatch match);

    QSize sizeHint() const override;

public Q_SLOTS:
    /// Copies the selection to the clipboard; does nothing when there is none, and says so when it is too long.
    void copy();
    void selectAll();
    /// Brings the end into view, where it stays as Following says; without a selection the caret goes there, too.
    void jumpToEnd();

Q_SIGNALS:
    /// The end has come into view, or is no longer there.
    void showsEndChanged(bool showsEnd);

    /// The user selects something else.
    void selectionChanged();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void requestFrame();
    void showChanges();
    void updateView();
    void updateScrollBar();
    void scrollByStep(int action);
    void paintRows(QPainter &painter, const QRect &area);
    void paintCaret(QPainter &painter);

    void selectionMoved();
    void keepPlaceOfSelection();
    void takeSelection();
    void tellWhetherEndShows();
    /// The user holds the scroll bar's slider. Where the release went elsewhere, that ends here.
    bool isSliderHeld();

    const Transcript &m_transcript;
    const TextView &m_text;
    const Following m_following;
    CellFont m_font;
    OutputPaneRows m_rows;
    OutputPaneViewport m_view;
    OutputPaneNavigation m_navigation;
    OutputPaneCursor m_cursor;
    OutputPaneMouse m_mouse;
    OutputPaneMarks m_marks;
    OutputPaneAccessible::Announcer m_announcer;

    QTimer m_frame;
    QElapsedTimer m_sinceFrame;
    /// Paints what had no font in time, unless a frame comes anyway.
    QTimer m_completion;
    /// What the last frame took to be brought up to date, and to be painted.
    qint64 m_changeMilliseconds = 0;
    qint64 m_paintMilliseconds = 0;
    /// The end must come into view with the next frame in which no button is held.
    bool m_wantsEnd = true;
    bool m_showsEnd = true;
    /// The end of the text when it was last brought into the pane.
    Position m_shownEnd = 0;
    bool m_updatesScrollBar = false;
    /// Content pixels for one step of the scroll bar, more than one where an int would not do.
    qint64 m_pixelsPerStep = 1;
};
