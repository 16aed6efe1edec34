#include "OutputPane/OutputPaneMouse.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTimerEvent>
#include <QWheelEvent>

namespace
{

constexpr int autoScrollInterval = 30;
constexpr int wheelNotch = 120;

} // namespace

OutputPaneMouse::OutputPaneMouse(OutputPaneViewport &view, const OutputPaneNavigation &navigation,
                                 OutputPaneCursor &cursor)
    : m_view(view),
      m_navigation(navigation),
      m_cursor(cursor)
{
}

void OutputPaneMouse::press(const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton)
        return;
    const QPoint point = event.position().toPoint();
    const bool isThird = m_sinceDoubleClick.isValid() &&
                         m_sinceDoubleClick.elapsed() < QApplication::doubleClickInterval() &&
                         (point - m_doubleClickPoint).manhattanLength() < QApplication::startDragDistance();
    begin(point, isThird ? Unit::line : Unit::character, event.modifiers().testFlag(Qt::ShiftModifier));
}

void OutputPaneMouse::doubleClick(const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton)
        return;
    m_doubleClickPoint = event.position().toPoint();
    m_sinceDoubleClick.start();
    begin(m_doubleClickPoint, Unit::word, false);
}

void OutputPaneMouse::begin(QPoint point, Unit unit, bool extends)
{
    if (m_view.isEmpty())
        return;
    m_cursor.keepWithinText();
    m_cursor.forgetColumn();
    m_unit = unit;
    m_dragPoint = point;
    m_stoodAtEnd = m_view.isAtEnd();
    if (unit != Unit::character)
        m_cursor.hold(unitAt(point));
    else if (extends)
        m_cursor.extendTo(caretAt(point));
    else
        m_cursor.moveTo(caretAt(point));
    m_view.hold();
    Q_EMIT selected();
}

void OutputPaneMouse::move(const QMouseEvent &event)
{
    if (isHeld())
        dragTo(event.position().toPoint());
}

void OutputPaneMouse::dragTo(QPoint point)
{
    if (m_view.isEmpty())
        return;
    m_cursor.keepWithinText();
    m_dragPoint = point;
    if (m_unit == Unit::character)
        m_cursor.extendTo(caretAt(point));
    else
        m_cursor.extendTo(unitAt(point));
    m_view.hold();
    Q_EMIT selected();

    const bool isOutside = point.y() < 0 || point.y() >= m_view.height();
    if (!isOutside)
        m_autoScroll.stop();
    else if (!m_autoScroll.isActive())
        m_autoScroll.start(autoScrollInterval, this);
}

/// The mouse is held above or below the pane: the text moves by, the faster the further away it is.
void OutputPaneMouse::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_autoScroll.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    if (!isHeld())
        return;
    const int y = m_dragPoint.y();
    m_stoodAtEnd = false;
    m_view.scrollBy(y < 0 ? y : y - m_view.height() + 1);
    Q_EMIT scrolled();
    dragTo(m_dragPoint);
}

bool OutputPaneMouse::isHeld()
{
    if (m_unit != Unit::none && !QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
        endDrag();
    return m_unit != Unit::none;
}

void OutputPaneMouse::release(const QMouseEvent &event)
{
    if (event.button() == Qt::LeftButton && m_unit != Unit::none)
        endDrag();
}

void OutputPaneMouse::endDrag()
{
    m_unit = Unit::none;
    m_autoScroll.stop();
    // A click that selects nothing is no wish to stay, however much has come since the button went down.
    if (m_stoodAtEnd && m_cursor.isEmpty())
        m_view.scrollToEnd();
    else
        m_view.letGo();
    Q_EMIT ended();
}

OutputCaret OutputPaneMouse::caretAt(QPoint point)
{
    return m_navigation.nearest(m_view.rowAt(point.y()), point.x() - OutputPaneViewport::padding);
}

OutputRange OutputPaneMouse::unitAt(QPoint point)
{
    const TextView::Position position =
        m_navigation.positionIn(m_view.rowAt(point.y()), point.x() - OutputPaneViewport::padding);
    return m_unit == Unit::line ? m_navigation.lineAt(position) : m_navigation.wordAt(position);
}

bool OutputPaneMouse::turnWheel(const QWheelEvent &event)
{
    const int turned = event.angleDelta().y();
    if (turned == 0 || m_view.mostAbove() == 0)
        return false;
    m_stoodAtEnd = false;
    if (const int fine = event.pixelDelta().y()) {
        m_view.scrollBy(-fine);
    } else {
        // A finely notched wheel turns by less than a pixel at a time: the rest waits for the next turn.
        m_wheelRest += qint64{turned} * QApplication::wheelScrollLines() * m_view.rowHeight();
        m_view.scrollBy(-(m_wheelRest / wheelNotch));
        m_wheelRest %= wheelNotch;
    }
    return true;
}
