#pragma once

// The mouse over the output pane: selects by characters, by words after two clicks and by lines after three, scrolls
// while a drag is held above or below the pane, and turns the wheel's notches into pixels.

#include "OutputPane/OutputPaneCursor.h"
#include "OutputPane/OutputPaneViewport.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QPoint>

class QMouseEvent;
class QWheelEvent;

class OutputPaneMouse : public QObject
{
    Q_OBJECT

public:
    /// All must outlive the mouse.
    OutputPaneMouse(OutputPaneViewport &view, const OutputPaneNavigation &navigation, OutputPaneCursor &cursor);

    // Points are those of the viewport.
    void press(const QMouseEvent &event);
    void doubleClick(const QMouseEvent &event);
    void move(const QMouseEvent &event);
    void release(const QMouseEvent &event);
    /// Scrolls; false when there is nothing to scroll.
    bool turnWheel(const QWheelEvent &event);

    /// The user drags. Where the release went elsewhere (to a question over the window, say), the drag ends here.
    bool isHeld();

Q_SIGNALS:
    /// The caret or the selection moved.
    void selected();
    /// The button was released, or the drag ended without that.
    void ended();
    /// The text moved by under a drag.
    void scrolled();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    /// What a drag selects by.
    enum class Unit { none, character, word, line };

    void begin(QPoint point, Unit unit, bool extends);
    void dragTo(QPoint point);
    void endDrag();
    OutputCaret caretAt(QPoint point);
    OutputRange unitAt(QPoint point);

    OutputPaneViewport &m_view;
    const OutputPaneNavigation &m_navigation;
    OutputPaneCursor &m_cursor;
    Unit m_unit = Unit::none;
    QPoint m_dragPoint;
    /// The text's end was in view when the drag began, and the drag has not scrolled away from it.
    bool m_stoodAtEnd = false;
    QBasicTimer m_autoScroll;
    QElapsedTimer m_sinceDoubleClick;
    QPoint m_doubleClickPoint;
    /// What the wheel turned and was not yet scrolled, in parts of a notch of a pixel.
    qint64 m_wheelRest = 0;
};
