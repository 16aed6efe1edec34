#include "Look/PlainText/PlainTextBox.h"

#include "Look/PlainText/LongLines.h"

#include <QMimeData>
#include <QScrollBar>

PlainTextBox::PlainTextBox(const QFont &font, WhenGrowing whenGrowing, QWidget *parent)
    : QPlainTextEdit(parent),
      m_whenGrowing(whenGrowing)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setFont(font);
    setFrameShape(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void PlainTextBox::showText(const QString &text)
{
    // A carriage return at the end may be the first half of a line end.
    const QString next = text.endsWith(u'\r') ? text.chopped(1) : text;
    if (next == m_shown)
        return;
    QScrollBar *bar = verticalScrollBar();
    const bool toEnd = m_whenGrowing == WhenGrowing::followEnd && bar->value() == bar->maximum();
    const int place = bar->value();
    if (!next.startsWith(m_shown)) {
        clear();
        m_shown.clear();
    }
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    LongLines::insert(end, QStringView(next).sliced(m_shown.size()));
    m_shown = next;
    bar->setValue(toEnd ? bar->maximum() : place);
    if (m_hidesWhileEmpty)
        setVisible(!m_shown.isEmpty());
}

void PlainTextBox::hideWhileEmpty()
{
    m_hidesWhileEmpty = true;
    setVisible(!m_shown.isEmpty());
}

QMimeData *PlainTextBox::createMimeDataFromSelection() const
{
    const QTextCursor cursor = textCursor();
    auto *copied = new QMimeData;
    copied->setText(LongLines::text(*document(), cursor.selectionStart(), cursor.selectionEnd()));
    return copied;
}
