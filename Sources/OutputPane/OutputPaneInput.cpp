// The output pane under the user's hands: mouse, keyboard, selection and clipboard.

#include "OutputPane/OutputPane.h"

#include "OutputPane/OutputCopy.h"
#include "RunController/RunController.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QStyleHints>
#include <QTimerEvent>
#include <QWheelEvent>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

constexpr int autoScrollInterval = 30;
constexpr int wheelNotch = 120;

} // namespace

QString OutputPane::selectedText() const
{
    return transcript().text().text(m_selection.begin(), m_selection.end());
}

void OutputPane::select(Position from, Position to)
{
    m_selection.moveTo({from, false});
    m_selection.extendTo(OutputCaret{to, false});
    m_selection.keepWithin(transcript().begin(), transcript().end());
    selectionMoved();
}

void OutputPane::selectAll()
{
    select(transcript().begin(), transcript().end());
}

void OutputPane::copy()
{
    if (!m_selection.isEmpty())
        OutputCopy::copy(this, transcript(), m_selection.begin(), m_selection.end());
}

void OutputPane::selectionMoved()
{
    m_caretAtEnd = m_selection.isEmpty() && m_selection.caret().position == transcript().end();
    m_announcer.announceSelection(*this);
    viewport()->update();
}

void OutputPane::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        copy();
    else if (event->matches(QKeySequence::SelectAll))
        selectAll();
    else if (const auto keyMove = OutputPaneKeys::moveFor(*event))
        move(*keyMove);
    else
        event->ignore();
}

void OutputPane::move(OutputMove move)
{
    if (m_rows.isEmpty())
        return;
    m_selection.keepWithin(transcript().begin(), transcript().end());
    const bool vertical = move.goal == OutputMove::Goal::nextRow || move.goal == OutputMove::Goal::previousRow ||
                          move.goal == OutputMove::Goal::nextPage || move.goal == OutputMove::Goal::previousPage;
    if (!vertical)
        m_wantedX.reset();
    else if (!m_wantedX)
        m_wantedX = m_navigation.xOf(m_selection.caret());

    if (move.selects)
        m_selection.extendTo(goalOf(move.goal));
    else if (!m_selection.isEmpty() && move.goal == OutputMove::Goal::nextCharacter)
        m_selection.moveTo({m_selection.end(), false});
    else if (!m_selection.isEmpty() && move.goal == OutputMove::Goal::previousCharacter)
        m_selection.moveTo({m_selection.begin(), false});
    else
        m_selection.moveTo(goalOf(move.goal));
    m_view.show(m_navigation.rowOf(m_selection.caret()));
    updateScrollBar();
    selectionMoved();
}

OutputCaret OutputPane::goalOf(OutputMove::Goal goal)
{
    const OutputCaret caret = m_selection.caret();
    const int page = std::max(1, viewport()->height() / m_font.rowHeight() - 1);
    switch (goal) {
    case OutputMove::Goal::nextCharacter:
        return {m_navigation.nextCharacter(caret.position), false};
    case OutputMove::Goal::previousCharacter:
        return {m_navigation.previousCharacter(caret.position), false};
    case OutputMove::Goal::nextWord:
        return {m_navigation.nextWord(caret.position), false};
    case OutputMove::Goal::previousWord:
        return {m_navigation.previousWord(caret.position), false};
    case OutputMove::Goal::nextRow:
        return rowsAway(1);
    case OutputMove::Goal::previousRow:
        return rowsAway(-1);
    case OutputMove::Goal::nextPage:
        return rowsAway(page);
    case OutputMove::Goal::previousPage:
        return rowsAway(-page);
    case OutputMove::Goal::rowBegin:
        return m_navigation.rowBegin(caret);
    case OutputMove::Goal::rowEnd:
        return m_navigation.rowEnd(caret);
    case OutputMove::Goal::lineBegin:
        return {m_navigation.lineAt(caret.position).begin, false};
    case OutputMove::Goal::lineEnd:
        return m_navigation.lineEnd(caret.position);
    case OutputMove::Goal::textBegin:
        return {transcript().begin(), false};
    case OutputMove::Goal::textEnd:
        return {transcript().end(), false};
    }
    Q_UNREACHABLE();
}

/// That many rows down, or up when negative, as near to the wanted column as can be. Past the first or the last row it
/// is the end of the text.
OutputCaret OutputPane::rowsAway(int rows)
{
    OutputPaneRows::Row row = m_navigation.rowOf(m_selection.caret());
    for (; rows > 0; --rows) {
        if (!m_rows.next(row))
            return {transcript().end(), false};
    }
    for (; rows < 0; ++rows) {
        if (!m_rows.previous(row))
            return {transcript().begin(), false};
    }
    return m_navigation.nearest(row, *m_wantedX);
}

OutputCaret OutputPane::caretAt(QPoint point)
{
    const OutputPaneRows::Row row = m_rows.at(positionAt(point));
    return m_navigation.nearest(row, point.x() - OutputPaneViewport::padding);
}

OutputRange OutputPane::unitAt(QPoint point)
{
    const Position position = positionAt(point);
    return m_dragUnit == Unit::line ? m_navigation.lineAt(position) : m_navigation.wordAt(position);
}

void OutputPane::press(QPoint point, Unit unit, bool extends)
{
    if (m_rows.isEmpty())
        return;
    m_selection.keepWithin(transcript().begin(), transcript().end());
    m_wantedX.reset();
    m_dragUnit = unit;
    m_dragPoint = point;
    if (unit != Unit::character)
        m_selection.hold(unitAt(point));
    else if (extends)
        m_selection.extendTo(caretAt(point));
    else
        m_selection.moveTo(caretAt(point));
    m_view.hold();
    selectionMoved();
}

void OutputPane::dragTo(QPoint point)
{
    if (m_rows.isEmpty())
        return;
    m_selection.keepWithin(transcript().begin(), transcript().end());
    m_dragPoint = point;
    if (m_dragUnit == Unit::character)
        m_selection.extendTo(caretAt(point));
    else
        m_selection.extendTo(unitAt(point));
    m_view.hold();
    selectionMoved();

    const bool outside = point.y() < 0 || point.y() >= viewport()->height();
    if (!outside)
        m_autoScroll.stop();
    else if (!m_autoScroll.isActive())
        m_autoScroll.start(autoScrollInterval, this);
}

bool OutputPane::isHeld()
{
    if (m_dragUnit != Unit::none && !QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
        endDrag();
    return m_dragUnit != Unit::none;
}

void OutputPane::endDrag()
{
    m_dragUnit = Unit::none;
    m_autoScroll.stop();
    m_view.letGo();
}

bool OutputPane::isSliderHeld()
{
    QScrollBar *const bar = verticalScrollBar();
    if (bar->isSliderDown() && !QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
        bar->setSliderDown(false);
    return bar->isSliderDown();
}

void OutputPane::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QPoint point = event->position().toPoint();
    const bool third = m_sinceDoubleClick.isValid() &&
                       m_sinceDoubleClick.elapsed() < QApplication::doubleClickInterval() &&
                       (point - m_doubleClickPoint).manhattanLength() < QApplication::startDragDistance();
    press(point, third ? Unit::line : Unit::character, event->modifiers().testFlag(Qt::ShiftModifier));
}

void OutputPane::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_doubleClickPoint = event->position().toPoint();
    m_sinceDoubleClick.start();
    press(m_doubleClickPoint, Unit::word, false);
}

void OutputPane::mouseMoveEvent(QMouseEvent *event)
{
    if (isHeld())
        dragTo(event->position().toPoint());
}

void OutputPane::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_dragUnit == Unit::none)
        return;
    endDrag();
    QClipboard *const clipboard = QGuiApplication::clipboard();
    const bool isTooLong = m_selection.end() - m_selection.begin() > OutputCopy::most;
    if (clipboard->supportsSelection() && !m_selection.isEmpty() && !isTooLong)
        clipboard->setText(selectedText(), QClipboard::Selection);
    // What came meanwhile has waited.
    if (m_wantsEnd)
        requestFrame();
}

/// The mouse is held above or below the pane: the text moves by, the faster the further away it is.
void OutputPane::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_autoScroll.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    if (!isHeld())
        return;
    const int y = m_dragPoint.y();
    m_view.scrollBy(y < 0 ? y : y - viewport()->height() + 1);
    updateScrollBar();
    dragTo(m_dragPoint);
}

void OutputPane::wheelEvent(QWheelEvent *event)
{
    const int turned = event->angleDelta().y();
    if (turned == 0 || m_view.mostAbove() == 0) {
        event->ignore();
        return;
    }
    if (const int fine = event->pixelDelta().y()) {
        m_view.scrollBy(-fine);
    } else {
        // A finely notched wheel turns by less than a pixel at a time: the rest waits for the next turn.
        m_wheelRest += turned * QApplication::wheelScrollLines() * m_font.rowHeight();
        m_view.scrollBy(-(m_wheelRest / wheelNotch));
        m_wheelRest %= wheelNotch;
    }
    updateView();
    event->accept();
}

void OutputPane::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString &text, QKeySequence::StandardKey key, void (OutputPane::*slot)(), bool enabled) {
        QAction *action = menu->addAction(text, this, slot);
        action->setShortcut(key);
        action->setEnabled(enabled);
    };
    add(u"Copy"_s, QKeySequence::Copy, &OutputPane::copy, !m_selection.isEmpty());
    add(u"Select All"_s, QKeySequence::SelectAll, &OutputPane::selectAll, !m_rows.isEmpty());
    menu->popup(event->globalPos());
}
