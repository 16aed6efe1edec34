#include "Transcript/TextView.h"

#include "Text/Utf8.h"

#include <QStringDecoder>

#include <algorithm>

namespace
{

/// The first of a range of numbers for which the condition holds, which holds for all behind it; else `end`.
template <typename Condition>
std::int64_t firstWhere(std::int64_t begin, std::int64_t end, Condition condition)
{
    while (begin < end) {
        const std::int64_t middle = begin + (end - begin) / 2;
        if (condition(middle))
            end = middle;
        else
            begin = middle + 1;
    }
    return begin;
}

} // namespace

void TextView::moveBegin(Position position)
{
    if (position <= begin())
        return;
    m_begin = m_store.before(position, blockAt(position));
}

TextView::BlockNumber TextView::firstBlock() const
{
    // A line that was moved on to the next block may take the beginning along, so it is looked for each time.
    m_firstBlock = std::max(m_firstBlock, m_store.firstBlock());
    while (m_firstBlock + 1 < m_store.endBlock() && m_store.before(m_firstBlock + 1).bytes <= begin())
        ++m_firstBlock;
    return m_firstBlock;
}

TextView::BlockNumber TextView::blockAt(Position position) const
{
    const auto after = firstWhere(firstBlock() + 1, m_store.endBlock(),
                                  [&](BlockNumber number) { return m_store.before(number).bytes > position; });
    return after - 1;
}

QByteArrayView TextView::bytes(BlockNumber number) const
{
    const TextBlock &block = m_store.read(number);
    const Block known = this->block(number);
    if (block.isMissing)
        return block.text().first(std::min<qsizetype>(block.size, known.size.bytes));
    return block.text().sliced(known.begin() - m_store.before(number).bytes);
}

/// The part of a block's text that lies between two positions.
QByteArrayView TextView::bytesBetween(BlockNumber number, Position from, Position to) const
{
    const QByteArrayView whole = bytes(number);
    const Position begin = block(number).begin();
    const Position first = std::clamp<Position>(from - begin, 0, whole.size());
    const Position last = std::clamp<Position>(to - begin, first, whole.size());
    return whole.sliced(first, last - first);
}

/// The position itself or the next at which a code point begins, within the text.
TextView::Position TextView::codePointAt(Position position) const
{
    position = std::clamp(position, begin(), end());
    if (isEmpty())
        return position;
    const BlockNumber number = blockAt(position);
    if (block(number).isAscii())
        return position;
    const QByteArrayView after = bytesBetween(number, position, block(number).end());
    const auto start = std::find_if_not(after.begin(), after.end(), Utf8::isContinuation);
    return position + (start - after.begin());
}

QString TextView::text(Position from, Position to) const
{
    from = codePointAt(from);
    to = codePointAt(to);
    if (from >= to)
        return {};
    QString result(utf16Offset(to) - utf16Offset(from), Qt::Uninitialized);
    // A zero-width no-break space at the start is text like any other.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QChar *out = result.data();
    for (BlockNumber number = blockAt(from); number < endBlock() && block(number).begin() < to; ++number)
        out = decoder.appendToBuffer(out, bytesBetween(number, from, to));
    // The sentence in the place of a missing block is shorter.
    result.truncate(out - result.constData());
    return result;
}

qint64 TextView::utf16Offset(Position position) const
{
    if (isEmpty())
        return 0;
    position = std::clamp(position, begin(), end());
    const BlockNumber number = blockAt(position);
    const Block whole = block(number);
    qint64 inside = position - whole.begin();
    if (position == whole.end())
        inside = whole.size.utf16;
    else if (!whole.isAscii())
        inside = TextCount::of(bytesBetween(number, whole.begin(), position)).utf16;
    return whole.before.utf16 + inside - m_begin.utf16;
}

TextView::Position TextView::positionAtUtf16(qint64 offset) const
{
    if (isEmpty() || offset <= 0)
        return begin();
    const qint64 absolute = offset + m_begin.utf16;
    if (absolute >= m_store.before(m_store.endBlock()).utf16)
        return end();
    const BlockNumber number = firstWhere(firstBlock() + 1, m_store.endBlock(),
                                          [&](BlockNumber each) { return m_store.before(each).utf16 > absolute; }) -
                               1;
    const Block whole = block(number);
    const qint64 inside = absolute - whole.before.utf16;
    if (whole.isAscii())
        return whole.begin() + inside;
    const QByteArrayView text = bytes(number);
    qsizetype at = 0;
    for (qint64 units = 0; units < inside && at < text.size();) {
        const int length = Utf8::lengthOf(text[at]);
        units += length == 4 ? 2 : 1;
        if (units <= inside)
            at += length;
    }
    return whole.begin() + at;
}

TextView::Position TextView::lineBegin(Position position) const
{
    if (isEmpty())
        return begin();
    for (BlockNumber number = blockAt(position); number >= firstBlock(); --number) {
        if (block(number).size.lineFeeds == 0)
            continue;
        const qsizetype lineFeed = bytesBetween(number, begin(), position).lastIndexOf('\n');
        if (lineFeed >= 0)
            return block(number).begin() + lineFeed + 1;
    }
    return begin();
}

TextView::Position TextView::lineEnd(Position position) const
{
    if (isEmpty())
        return end();
    for (BlockNumber number = blockAt(position); number < endBlock(); ++number) {
        if (block(number).size.lineFeeds == 0)
            continue;
        const qsizetype lineFeed = bytesBetween(number, position, end()).indexOf('\n');
        if (lineFeed >= 0)
            return std::max(position, block(number).begin()) + lineFeed + 1;
    }
    return end();
}

TextView::Run TextView::runAt(Position position) const
{
    if (isEmpty())
        return {begin(), end(), m_store.lastKind()};
    const BlockNumber number = blockAt(position);
    const Position begin = m_store.before(number).bytes;
    const std::vector<KindMark> &kinds = m_store.read(number).kinds;
    const auto after = std::upper_bound(kinds.begin(), kinds.end(), position - begin,
                                        [](Position value, const KindMark &mark) { return value < mark.begin; });
    const KindMark &mark = *std::prev(after);
    const Position runEnd = after == kinds.end() ? block(number).end() : begin + after->begin;
    return {std::max(begin + mark.begin, this->begin()), runEnd, mark.kind};
}

TextSnapshot TextView::snapshot() const
{
    return isEmpty() ? TextSnapshot() : TextSnapshot(m_store.blocks(), firstBlock(), begin(), end());
}
