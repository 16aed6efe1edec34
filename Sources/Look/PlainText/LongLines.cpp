#include "Look/PlainText/LongLines.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace
{

constexpr int continuing = QTextFormat::UserProperty;

/// The format of what stands before a paragraph that goes on with a line.
QTextCharFormat continuingFormat()
{
    QTextCharFormat format;
    format.setProperty(continuing, true);
    return format;
}

/// Whether a document begins a new paragraph at this character.
bool partsParagraphs(QChar character)
{
    switch (character.unicode()) {
    case u'\n':
    case u'\r':
    case QChar::ParagraphSeparator:
    case 0xfdd0: // the document's own frame marks, noncharacters in any real text
    case 0xfdd1:
        return true;
    default:
        return false;
    }
}

} // namespace

bool LongLines::insert(QTextCursor &cursor, QStringView text)
{
    bool hasCut = false;
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    qsizetype begin = 0;
    qsizetype length = cursor.positionInBlock();
    for (qsizetype index = 0; index < text.size(); ++index) {
        if (partsParagraphs(text[index])) {
            length = 0;
            continue;
        }
        if (length >= longestParagraph && !text[index].isLowSurrogate()) {
            cursor.insertText(text.sliced(begin, index - begin).toString(), {});
            cursor.insertBlock({}, continuingFormat());
            hasCut = true;
            begin = index;
            length = 0;
        }
        ++length;
    }
    cursor.insertText(text.sliced(begin).toString(), {});
    cursor.endEditBlock();
    return hasCut;
}

bool LongLines::continuesLine(const QTextBlock &paragraph)
{
    return paragraph.charFormat().hasProperty(continuing);
}

QString LongLines::text(const QTextDocument &document, int begin, int end)
{
    QString text;
    text.reserve(end - begin);
    for (QTextBlock block = document.findBlock(begin); block.isValid() && block.position() <= end;
         block = block.next()) {
        if (block.position() > begin && !continuesLine(block))
            text += u'\n';
        const int from = std::max(0, begin - block.position());
        const int to = std::min(block.length() - 1, end - block.position());
        text += QStringView(block.text()).sliced(from, to - from);
    }
    // What Shift-Return types.
    text.replace(QChar::LineSeparator, u'\n');
    return text;
}
