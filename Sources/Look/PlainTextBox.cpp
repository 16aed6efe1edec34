#include "Look/PlainTextBox.h"

#include <QList>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>

namespace
{

constexpr qsizetype longestParagraph = 2000;
/// The user state of a paragraph whose line goes on in the next one.
constexpr int lineGoesOn = 1;

bool endsLine(QChar character)
{
    switch (character.unicode()) {
    case u'\n':
    case u'\r':
    case QChar::LineSeparator:
    case QChar::ParagraphSeparator:
    case 0xfdd0: // the document's own frame marks, noncharacters in any real text
    case 0xfdd1:
        return true;
    default:
        return false;
    }
}

} // namespace

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
    append(QStringView(next).sliced(m_shown.size()));
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

void PlainTextBox::append(QStringView tail)
{
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    const int firstBlock = cursor.blockNumber();

    QString paragraphs;
    paragraphs.reserve(tail.size() + tail.size() / longestParagraph + 1);
    QList<int> cutBlocks;
    int block = firstBlock;
    qsizetype length = cursor.positionInBlock();
    for (qsizetype index = 0; index < tail.size(); ++index) {
        const QChar character = tail[index];
        const bool isSecondHalf = character == u'\n' && index > 0 && tail[index - 1] == u'\r';
        if (isSecondHalf)
            continue;
        const bool isBreak = endsLine(character);
        if (!isBreak && length >= longestParagraph && !character.isLowSurrogate()) {
            cutBlocks.append(block++);
            paragraphs += QChar::ParagraphSeparator;
            length = 0;
        }
        if (isBreak) {
            ++block;
            length = 0;
            paragraphs += QChar::ParagraphSeparator;
        } else {
            ++length;
            paragraphs += character;
        }
    }
    cursor.insertText(paragraphs);
    for (const int number : std::as_const(cutBlocks))
        document()->findBlockByNumber(number).setUserState(lineGoesOn);
}

QMimeData *PlainTextBox::createMimeDataFromSelection() const
{
    const QTextCursor cursor = textCursor();
    const int end = cursor.selectionEnd();
    QString text;
    for (QTextBlock block = document()->findBlock(cursor.selectionStart()); block.isValid(); block = block.next()) {
        const int from = std::max(0, cursor.selectionStart() - block.position());
        text +=
            QStringView(block.text()).sliced(from, std::min<int>(block.length() - 1, end - block.position()) - from);
        if (end < block.position() + block.length())
            break;
        if (block.userState() != lineGoesOn)
            text += u'\n';
    }
    auto *copied = new QMimeData;
    copied->setText(text);
    return copied;
}
