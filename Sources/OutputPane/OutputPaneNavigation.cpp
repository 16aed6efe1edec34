#include "OutputPane/OutputPaneNavigation.h"

#include "Text/Utf8.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace
{

enum class Class { word, blank, lineEnd, sign };

Class classAt(QByteArrayView text, qsizetype at)
{
    const char32_t character = Utf8::next(text, at);
    if (character == U'\n' || character == U'\r')
        return Class::lineEnd;
    const auto codePoint = static_cast<UChar32>(character);
    if (u_isUWhiteSpace(codePoint) != 0)
        return Class::blank;
    const bool isMark = (U_GET_GC_MASK(codePoint) & U_GC_M_MASK) != 0;
    return u_isalnum(codePoint) != 0 || isMark || character == U'_' ? Class::word : Class::sign;
}

qsizetype before(QByteArrayView text, qsizetype at)
{
    --at;
    while (at > 0 && Utf8::isContinuation(text[at]))
        --at;
    return at;
}

qsizetype after(QByteArrayView text, qsizetype at)
{
    return std::min<qsizetype>(text.size(), at + Utf8::lengthOf(text[at]));
}

qsizetype runBegin(QByteArrayView text, qsizetype at, Class kind)
{
    while (at > 0 && classAt(text, before(text, at)) == kind)
        at = before(text, at);
    return at;
}

qsizetype runEnd(QByteArrayView text, qsizetype at, Class kind)
{
    while (at < text.size() && classAt(text, at) == kind)
        at = after(text, at);
    return at;
}

} // namespace

OutputPaneNavigation::Row OutputPaneNavigation::rowOf(OutputCaret caret) const
{
    Row row = m_rows.at(caret.position);
    if (caret.endsRow && m_rows.begin(row) == caret.position)
        m_rows.previous(row);
    return row;
}

double OutputPaneNavigation::xOf(OutputCaret caret) const
{
    const Row row = rowOf(caret);
    return layOut(row).xOf(caret.position - m_rows.begin(row));
}

OutputCaret OutputPaneNavigation::nearest(const Row &row, double x) const
{
    return caretIn(row, layOut(row).byteNearest(x));
}

TextView::Position OutputPaneNavigation::positionIn(const Row &row, double x) const
{
    return m_rows.begin(row) + layOut(row).byteAt(x);
}

/// At the row's end the caret stays in this row; one without any text is no row's end.
OutputCaret OutputPaneNavigation::caretIn(const Row &row, qint64 byte) const
{
    const Position position = m_rows.begin(row) + byte;
    return {position, byte > 0 && position == m_rows.end(row)};
}

TextView::Position OutputPaneNavigation::nextCharacter(Position position) const
{
    const Row row = m_rows.at(position);
    const OutputPaneRow laidOut = layOut(row);
    const std::size_t index = laidOut.indexOf(position - m_rows.begin(row));
    if (index < laidOut.clusters().size())
        return m_rows.begin(row) + laidOut.clusters()[index].end();
    return m_rows.text().block(row.block).end();
}

TextView::Position OutputPaneNavigation::previousCharacter(Position position) const
{
    Row row = m_rows.at(position);
    if (m_rows.begin(row) == position && !m_rows.previous(row))
        return position;
    const OutputPaneRow laidOut = layOut(row);
    if (laidOut.clusters().empty())
        return m_rows.begin(row);
    const std::size_t index = laidOut.indexOf(position - m_rows.begin(row) - 1);
    return m_rows.begin(row) + laidOut.clusters()[std::min(index, laidOut.clusters().size() - 1)].begin;
}

TextView::Position OutputPaneNavigation::nextWord(Position position) const
{
    const TextView &text = m_rows.text();
    const TextView::BlockNumber number = text.blockAt(position);
    const QByteArrayView bytes = text.bytes(number);
    const Position begin = text.block(number).begin();
    qsizetype at = position - begin;
    if (at >= bytes.size())
        return text.block(number).end();
    const Class kind = classAt(bytes, at);
    at = kind == Class::lineEnd ? nextCharacter(position) - begin : runEnd(bytes, at, kind);
    return begin + runEnd(bytes, at, Class::blank);
}

TextView::Position OutputPaneNavigation::previousWord(Position position) const
{
    const TextView &text = m_rows.text();
    const TextView::BlockNumber number = text.blockAt(std::max(text.begin(), position - 1));
    const QByteArrayView bytes = text.bytes(number);
    const Position begin = text.block(number).begin();
    const qsizetype at = runBegin(bytes, std::min(position - begin, bytes.size()), Class::blank);
    if (at == 0)
        return begin;
    const qsizetype last = before(bytes, at);
    const Class kind = classAt(bytes, last);
    return kind == Class::lineEnd ? previousCharacter(begin + at) : begin + runBegin(bytes, last, kind);
}

OutputCaret OutputPaneNavigation::rowBegin(OutputCaret caret) const
{
    return {m_rows.begin(rowOf(caret)), false};
}

OutputCaret OutputPaneNavigation::rowEnd(OutputCaret caret) const
{
    const Row row = rowOf(caret);
    return caretIn(row, layOut(row).endOfText());
}

OutputCaret OutputPaneNavigation::lineEnd(Position position) const
{
    const OutputRange line = lineAt(position);
    // Behind the text's last line end there is a line without anything, not even an end.
    if (line.begin == line.end)
        return {line.end, false};
    return rowEnd({previousCharacter(line.end), false});
}

OutputRange OutputPaneNavigation::wordAt(Position position) const
{
    const TextView &text = m_rows.text();
    const TextView::BlockNumber number = text.blockAt(position);
    const QByteArrayView bytes = text.bytes(number);
    const Position begin = text.block(number).begin();
    const qsizetype at = position - begin;
    if (at >= bytes.size() || classAt(bytes, at) == Class::lineEnd)
        return {position, position};
    const Class kind = classAt(bytes, at);
    return {begin + runBegin(bytes, at, kind), begin + runEnd(bytes, at, kind)};
}

OutputRange OutputPaneNavigation::rowAt(Position position) const
{
    const Row row = m_rows.at(position);
    return {m_rows.begin(row), m_rows.end(row)};
}

OutputRange OutputPaneNavigation::lineAt(Position position) const
{
    return {m_rows.text().lineBegin(position), m_rows.text().lineEnd(position)};
}
