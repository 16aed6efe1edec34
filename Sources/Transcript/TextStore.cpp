#include "Transcript/TextStore.h"

#include "Text/GraphemeBreaker.h"
#include "Text/Utf8.h"

#include <QStringDecoder>

#include <algorithm>
#include <cstring>

namespace
{

/// How far back the start of a character is looked for: a monstrous pile of accents may be cut.
constexpr qsizetype stretch = 256;

/// The last place at or before `limit`, which is inside the text, where a character begins; 0 when there is none.
qsizetype characterStart(QByteArrayView text, qsizetype limit)
{
    qsizetype at = std::max<qsizetype>(0, limit - stretch);
    while (at < limit && Utf8::isContinuation(text[at]))
        ++at;
    GraphemeBreaker breaker;
    qsizetype start = at;
    while (at <= limit) {
        const qsizetype here = at;
        if (breaker.startsCluster(Utf8::next(text, at)))
            start = here;
    }
    return start;
}

/// The first of the numbers below `size` for which the condition holds, which holds for all behind it; else `size`.
template <typename Condition>
std::int64_t firstWhere(std::int64_t size, Condition condition)
{
    std::int64_t begin = 0;
    while (begin < size) {
        const std::int64_t middle = begin + (size - begin) / 2;
        if (condition(middle))
            size = middle;
        else
            begin = middle + 1;
    }
    return begin;
}

} // namespace

void TextStore::append(QByteArrayView text)
{
    if (m_blocks.isEmpty() && !text.isEmpty())
        startBlock(text);
    while (!text.isEmpty()) {
        text = text.sliced(fill(text));
        if (!text.isEmpty())
            startBlock(text);
    }
}

/// Adds as much of the text to the last block as belongs there, and returns how much that was.
qsizetype TextStore::fill(QByteArrayView text)
{
    const BlockNumber last = endBlock() - 1;
    const qsizetype room = blockCapacity - droppedOf(last) - block(last).size.bytes;
    qsizetype taken = text.size();
    if (taken > room) {
        taken = text.first(room).lastIndexOf('\n') + 1;
        if (taken == 0 && !openLineMovesOn(last))
            taken = characterStart(text, room);
    }
    addToLast(text.first(taken));
    return taken;
}

/// Whether the unfinished last line goes to the next block when this one is full.
bool TextStore::openLineMovesOn(BlockNumber number) const
{
    const qsizetype openLine = openLineBytes(number);
    return openLine <= longestMovedLine && openLine < block(number).size.bytes;
}

/// How much of the end of the last block, which is full, goes to the next: its unfinished last line, or where that is
/// too long, the character that goes on in the text to come.
qsizetype TextStore::bytesThatMoveOn(QByteArrayView next) const
{
    const BlockNumber full = endBlock() - 1;
    if (openLineMovesOn(full))
        return openLineBytes(full);
    const QByteArrayView tail = bytes(full).last(std::min<qsizetype>(block(full).size.bytes, stretch));
    const QByteArray joined = tail.toByteArray().append(next.first(Utf8::lengthOf(next.front())));
    const qsizetype start = characterStart(joined, tail.size());
    return start == 0 ? 0 : tail.size() - start;
}

/// Makes a new last block for `next`, and moves what belongs together with it from the one before.
void TextStore::startBlock(QByteArrayView next)
{
    PageMemory memory = takeMemory();
    TextCount begin = m_end;
    if (!m_blocks.isEmpty()) {
        const QByteArrayView moved = bytes(endBlock() - 1).last(bytesThatMoveOn(next));
        std::copy(moved.begin(), moved.end(), memory.data());
        begin = m_end - TextCount::of(moved);
    }
    m_blocks.append(begin);
    m_plain.push_back(std::move(memory));
}

/// Memory for another block: that of the oldest plain block, which is compressed, when there are enough of them.
PageMemory TextStore::takeMemory()
{
    if (m_plain.size() < m_plainBlocks)
        return PageMemory(blockCapacity);
    m_compressed.append(bytes(firstPlainBlock()));
    if (m_compressed.size() == 1)
        m_droppedOfFront = 0; // what was dropped of it did not go with it
    PageMemory memory = std::move(m_plain.front());
    m_plain.pop_front();
    return memory;
}

void TextStore::addToLast(QByteArrayView text)
{
    if (text.isEmpty())
        return;
    const BlockNumber last = endBlock() - 1;
    std::memcpy(m_plain.back().data() + droppedOf(last) + block(last).size.bytes, text.data(),
                static_cast<std::size_t>(text.size()));
    m_end += TextCount::of(text);
}

void TextStore::dropFront(Position newBegin)
{
    const auto dropped = firstWhere(
        m_blocks.size(), [&](std::int64_t index) { return before(m_firstBlock + index + 1).bytes > newBegin; });
    if (dropped > 0) {
        const std::int64_t compressed = std::min(dropped, m_compressed.size());
        m_blocks.dropFront(dropped);
        m_compressed.dropFront(compressed);
        PageMemory::giveBackFront(m_plain, static_cast<std::size_t>(dropped - compressed));
        m_firstBlock += dropped;
        m_droppedOfFront = 0;
    }
    if (isEmpty())
        return;
    const TextCount cut = TextCount::of(bytesBetween(m_firstBlock, begin(), newBegin));
    m_blocks[0] += cut;
    m_droppedOfFront += static_cast<std::int32_t>(cut.bytes);
}

QByteArrayView TextStore::bytes(BlockNumber number) const
{
    const std::int32_t dropped = droppedOf(number);
    if (number < firstPlainBlock())
        return m_compressed.read(number - m_firstBlock).sliced(dropped);
    const PageMemory &memory = m_plain[static_cast<std::size_t>(number - firstPlainBlock())];
    return {memory.data() + dropped, block(number).size.bytes};
}

TextStore::BlockNumber TextStore::blockAt(Position position) const
{
    const auto after =
        firstWhere(m_blocks.size(), [&](std::int64_t index) { return m_blocks[index].bytes > position; });
    return m_firstBlock + std::max<std::int64_t>(0, after - 1);
}

/// The part of a block's text that lies between two positions.
QByteArrayView TextStore::bytesBetween(BlockNumber number, Position from, Position to) const
{
    const Block whole = block(number);
    const Position first = std::clamp(from, whole.begin(), whole.end());
    const Position last = std::clamp(to, first, whole.end());
    return bytes(number).sliced(first - whole.begin(), last - first);
}

/// The position itself or the next at which a code point begins, within the text.
TextStore::Position TextStore::codePointAt(Position position) const
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

QString TextStore::text(Position from, Position to) const
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
    return result;
}

qint64 TextStore::utf16Offset(Position position) const
{
    if (isEmpty())
        return 0;
    position = std::clamp(position, begin(), end());
    const BlockNumber number = blockAt(position);
    const Block whole = block(number);
    const qint64 inside =
        whole.isAscii() ? position - whole.begin() : TextCount::of(bytesBetween(number, whole.begin(), position)).utf16;
    return whole.before.utf16 + inside - m_blocks[0].utf16;
}

TextStore::Position TextStore::positionAtUtf16(qint64 offset) const
{
    if (isEmpty() || offset <= 0)
        return begin();
    const qint64 absolute = offset + m_blocks[0].utf16;
    if (absolute >= m_end.utf16)
        return end();
    const auto after =
        firstWhere(m_blocks.size(), [&](std::int64_t index) { return m_blocks[index].utf16 > absolute; });
    const BlockNumber number = m_firstBlock + after - 1;
    const Block whole = block(number);
    const qint64 inside = absolute - whole.before.utf16;
    if (whole.isAscii())
        return whole.begin() + inside;
    const QByteArrayView text = bytes(number);
    qsizetype at = 0;
    for (qint64 units = 0; units < inside;) {
        const int length = Utf8::lengthOf(text[at]);
        units += length == 4 ? 2 : 1;
        if (units <= inside)
            at += length;
    }
    return whole.begin() + at;
}

TextStore::Position TextStore::lineBegin(Position position) const
{
    if (isEmpty())
        return begin();
    for (BlockNumber number = blockAt(position); number >= firstBlock(); --number) {
        if (block(number).size.lineFeeds == 0)
            continue;
        const qsizetype lineFeed = bytesBetween(number, block(number).begin(), position).lastIndexOf('\n');
        if (lineFeed >= 0)
            return block(number).begin() + lineFeed + 1;
    }
    return begin();
}

TextStore::Position TextStore::lineEnd(Position position) const
{
    if (isEmpty())
        return end();
    for (BlockNumber number = blockAt(position); number < endBlock(); ++number) {
        if (block(number).size.lineFeeds == 0)
            continue;
        const QByteArrayView after = bytesBetween(number, position, block(number).end());
        const qsizetype lineFeed = after.indexOf('\n');
        if (lineFeed >= 0)
            return block(number).end() - after.size() + lineFeed + 1;
    }
    return end();
}

std::int64_t TextStore::memory() const
{
    return m_blocks.memory() + m_compressed.memory() + static_cast<std::int64_t>(m_plain.size()) * blockCapacity;
}
