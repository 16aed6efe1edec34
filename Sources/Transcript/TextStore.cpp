#include "Transcript/TextStore.h"

#include "Text/GraphemeBreaker.h"
#include "Text/Utf8.h"
#include "Transcript/TextMeasure.h"

#include <QStringDecoder>

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
    if (m_facts.isEmpty() && !text.isEmpty())
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
    const qsizetype room = blockCapacity - droppedOf(last) - block(last).size;
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
    return openLine <= longestMovedLine && openLine < block(number).size;
}

/// How much of the end of the last block, which is full, goes to the next: its unfinished last line, or where that is
/// too long, the character that goes on in the text to come.
qsizetype TextStore::bytesThatMoveOn(QByteArrayView next) const
{
    const BlockNumber full = endBlock() - 1;
    if (openLineMovesOn(full))
        return openLineBytes(full);
    const QByteArrayView tail = bytes(full).last(std::min<qsizetype>(block(full).size, stretch));
    const QByteArray joined = tail.toByteArray().append(next.first(Utf8::lengthOf(next.front())));
    const qsizetype start = characterStart(joined, tail.size());
    return start == 0 ? 0 : tail.size() - start;
}

/// Makes a new last block for `next`, and moves what belongs together with it from the one before.
void TextStore::startBlock(QByteArrayView next)
{
    PageMemory memory = takeMemory();
    QByteArrayView moved;
    if (!m_facts.isEmpty()) {
        moved = bytes(endBlock() - 1).last(bytesThatMoveOn(next));
        TextMeasure measure;
        measure.add(moved);
        Block &full = m_facts.back();
        full.size -= static_cast<std::int32_t>(moved.size());
        full.utf16Length -= measure.utf16Length();
        full.cells -= measure.cells();
        full.openLine -= measure.cells();
        m_end -= moved.size();
        m_utf16End -= measure.utf16Length();
    }
    m_facts.append(Block{.begin = m_end, .utf16Begin = m_utf16End});
    // Adding a block leaves the others, and so the moved bytes, where they are.
    m_hot.push_back(std::move(memory));
    addToLast(moved);
}

/// Memory for another block: that of the oldest hot block, which turns cold, when there are enough of them.
PageMemory TextStore::takeMemory()
{
    if (m_hot.size() < m_hotBlocks)
        return PageMemory(blockCapacity);
    m_cold.append(bytes(firstHotBlock()));
    if (m_cold.size() == 1)
        m_droppedOfFront = 0; // what was dropped of it did not go with it
    PageMemory memory = std::move(m_hot.front());
    m_hot.pop_front();
    return memory;
}

void TextStore::addToLast(QByteArrayView text)
{
    if (text.isEmpty())
        return;
    Block &last = m_facts.back();
    std::memcpy(m_hot.back().data() + droppedOf(endBlock() - 1) + last.size, text.data(),
                static_cast<std::size_t>(text.size()));
    TextMeasure measure(last.openLine);
    measure.add(text);
    last.size += static_cast<std::int32_t>(text.size());
    last.utf16Length += measure.utf16Length();
    last.lineFeeds += measure.lineFeeds();
    last.cells += measure.cells();
    last.longestEndedLine = std::max(last.longestEndedLine, measure.longestEndedLine());
    last.openLine = measure.openLine();
    m_end += text.size();
    m_utf16End += measure.utf16Length();
}

void TextStore::dropFront(Position newBegin)
{
    const auto dropped =
        firstWhere(m_facts.size(), [&](std::int64_t index) { return m_facts[index].end() > newBegin; });
    if (dropped > 0) {
        const std::int64_t cold = std::min(dropped, m_cold.size());
        m_facts.dropFront(dropped);
        m_cold.dropFront(cold);
        PageMemory::giveBackFront(m_hot, static_cast<std::size_t>(dropped - cold));
        m_firstBlock += dropped;
        m_droppedOfFront = 0;
    }
    m_begin = newBegin;
    if (m_facts.isEmpty() || m_facts[0].begin == newBegin)
        return;
    TextMeasure measure;
    const QByteArrayView cut = bytesBetween(m_firstBlock, m_facts[0].begin, newBegin);
    measure.add(cut);
    Block &front = m_facts[0];
    m_droppedOfFront += static_cast<std::int32_t>(cut.size());
    front.begin = newBegin;
    front.size -= static_cast<std::int32_t>(cut.size());
    front.utf16Begin += measure.utf16Length();
    front.utf16Length -= measure.utf16Length();
    front.lineFeeds -= measure.lineFeeds();
    // A line cut here keeps its full width as a bound; tabs in what is left of it may stand wider than before.
    front.cells = std::max(0, front.cells - measure.cells());
}

QByteArrayView TextStore::bytes(BlockNumber number) const
{
    const std::int32_t dropped = droppedOf(number);
    if (number < firstHotBlock())
        return m_cold.read(number - m_firstBlock).sliced(dropped);
    const PageMemory &memory = m_hot[static_cast<std::size_t>(number - firstHotBlock())];
    return {memory.data() + dropped, block(number).size};
}

TextStore::BlockNumber TextStore::blockAt(Position position) const
{
    const auto after = firstWhere(m_facts.size(), [&](std::int64_t index) { return m_facts[index].begin > position; });
    return m_firstBlock + std::max<std::int64_t>(0, after - 1);
}

/// The part of a block's text that lies between two positions.
QByteArrayView TextStore::bytesBetween(BlockNumber number, Position from, Position to) const
{
    const Block &facts = block(number);
    const Position first = std::clamp(from, facts.begin, facts.end());
    const Position last = std::clamp(to, first, facts.end());
    return bytes(number).sliced(first - facts.begin, last - first);
}

/// The position itself or the next at which a code point begins, within the text.
TextStore::Position TextStore::codePointAt(Position position) const
{
    position = std::clamp(position, m_begin, m_end);
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
    for (BlockNumber number = blockAt(from); number < endBlock() && block(number).begin < to; ++number)
        out = decoder.appendToBuffer(out, bytesBetween(number, from, to));
    return result;
}

qint64 TextStore::utf16Offset(Position position) const
{
    if (isEmpty())
        return 0;
    position = std::clamp(position, m_begin, m_end);
    const BlockNumber number = blockAt(position);
    const Block &facts = block(number);
    const qint64 inside =
        facts.isAscii() ? position - facts.begin : Utf8::utf16Length(bytesBetween(number, facts.begin, position));
    return facts.utf16Begin + inside - m_facts[0].utf16Begin;
}

TextStore::Position TextStore::positionAtUtf16(qint64 offset) const
{
    if (isEmpty() || offset <= 0)
        return m_begin;
    const qint64 absolute = offset + m_facts[0].utf16Begin;
    if (absolute >= m_utf16End)
        return m_end;
    const auto after =
        firstWhere(m_facts.size(), [&](std::int64_t index) { return m_facts[index].utf16Begin > absolute; });
    const BlockNumber number = m_firstBlock + after - 1;
    const Block &facts = block(number);
    const qint64 inside = absolute - facts.utf16Begin;
    if (facts.isAscii())
        return facts.begin + inside;
    const QByteArrayView text = bytes(number);
    qsizetype at = 0;
    for (qint64 units = 0; units < inside;) {
        const int length = Utf8::lengthOf(text[at]);
        units += length == 4 ? 2 : 1;
        if (units <= inside)
            at += length;
    }
    return facts.begin + at;
}

TextStore::Position TextStore::lineBegin(Position position) const
{
    if (isEmpty())
        return m_begin;
    for (BlockNumber number = blockAt(position); number >= firstBlock(); --number) {
        if (block(number).lineFeeds == 0)
            continue;
        const qsizetype lineFeed = bytesBetween(number, block(number).begin, position).lastIndexOf('\n');
        if (lineFeed >= 0)
            return block(number).begin + lineFeed + 1;
    }
    return m_begin;
}

TextStore::Position TextStore::lineEnd(Position position) const
{
    if (isEmpty())
        return m_end;
    for (BlockNumber number = blockAt(position); number < endBlock(); ++number) {
        if (block(number).lineFeeds == 0)
            continue;
        const QByteArrayView after = bytesBetween(number, position, block(number).end());
        const qsizetype lineFeed = after.indexOf('\n');
        if (lineFeed >= 0)
            return block(number).end() - after.size() + lineFeed + 1;
    }
    return m_end;
}

std::int64_t TextStore::memory() const
{
    return m_facts.memory() + m_cold.memory() + static_cast<std::int64_t>(m_hot.size()) * blockCapacity;
}
