// The output pane under the user's hands: what it does for keys, mouse, menu and clipboard.

#include "OutputPane/OutputPane.h"

#include "OutputPane/OutputCopy.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

using namespace Qt::StringLiterals;

QString OutputPane::selectedText() const
{
    return m_text.text(m_cursor.begin(), m_cursor.end());
}

void OutputPane::select(Position from, Position to)
{
    m_cursor.moveTo({from, false});
    m_cursor.extendTo(OutputCaret{to, false});
    selectionMoved();
}

void OutputPane::selectAll()
{
    select(m_text.begin(), m_text.end());
}

void OutputPane::copy()
{
    if (!m_cursor.isEmpty())
        OutputCopy::copy(this, m_text, m_cursor.begin(), m_cursor.end());
}

OutputRange OutputPane::visibleRange()
{
    if (m_rows.isEmpty())
        return {m_text.end(), m_text.end()};
    const std::vector<OutputPaneViewport::VisibleRow> visible = m_view.visibleRows();
    return {m_rows.begin(visible.front().row), m_rows.end(visible.back().row)};
}

void OutputPane::mark(const TextPattern &pattern)
{
    m_marks.setPattern(pattern);
    viewport()->update();
}

void OutputPane::reveal(TextMatch match)
{
    select(match.begin, match.end);
    const bool isAway = characterRect(match.begin).isEmpty();
    scrollTo(match.begin);
    if (isAway)
        m_view.scrollBy(characterRect(match.begin).center().y() - viewport()->height() / 2);
    updateView();
}

void OutputPane::selectionMoved()
{
    m_announcer.announceSelection();
    keepPlaceOfSelection();
    viewport()->update();
    Q_EMIT selectionChanged();
}

/// Who selects reads there, also at the end.
void OutputPane::keepPlaceOfSelection()
{
    if (m_following == Following::whileAtEnd && !m_cursor.isEmpty())
        m_view.hold();
}

void OutputPane::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (!OutputPaneCursor::isMove(*event)) {
        event->ignore();
    } else if (!m_rows.isEmpty()) {
        m_cursor.move(*event, std::max(1, viewport()->height() / m_font.rowHeight() - 1));
        m_view.show(m_navigation.rowOf(m_cursor.caret()));
        updateScrollBar();
        selectionMoved();
    }
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
    m_mouse.press(*event);
}

void OutputPane::mouseDoubleClickEvent(QMouseEvent *event)
{
    m_mouse.doubleClick(*event);
}

void OutputPane::mouseMoveEvent(QMouseEvent *event)
{
    m_mouse.move(*event);
}

void OutputPane::mouseReleaseEvent(QMouseEvent *event)
{
    m_mouse.release(*event);
}

/// The mouse has let go of the text.
void OutputPane::takeSelection()
{
    keepPlaceOfSelection();
    QClipboard *const clipboard = QGuiApplication::clipboard();
    const bool isTooLong = m_cursor.end() - m_cursor.begin() > OutputCopy::most;
    if (clipboard->supportsSelection() && !m_cursor.isEmpty() && !isTooLong)
        clipboard->setText(selectedText(), QClipboard::Selection);
    // What came meanwhile has waited.
    requestFrame();
}

void OutputPane::wheelEvent(QWheelEvent *event)
{
    event->setAccepted(m_mouse.turnWheel(*event));
    if (event->isAccepted())
        updateView();
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
    add(u"Copy"_s, QKeySequence::Copy, &OutputPane::copy, !m_cursor.isEmpty());
    add(u"Select All"_s, QKeySequence::SelectAll, &OutputPane::selectAll, !m_rows.isEmpty());
    menu->popup(event->globalPos());
}
