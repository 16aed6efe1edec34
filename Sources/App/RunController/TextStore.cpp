#include "RunController/TextStore.h"

#include "OrbCLI/GraphemeBreaker.h"
#include "OrbCLI/Utf8.h"
#include "RunController/TextMeasure.h"

#include <QStringDecoder>

#include <cstring>
#include <iterator>

namespace
{

/// The last place at or before `limit`, which is inside the text, where a character begins; 0 when there is none. Reads
/// a short stretch only: a monstrous pile of accents may be cut.
qsizetype characterStart(QByteArrayView text, qsizetype limit)
{
    constexpr qsizetype stretch = 256;
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

} // namespace

void TextStore::append(QByteArrayView text)
{
    if (m_blocks.empty() && !text.isEmpty())
        startBlock();
    while (!text.isEmpty()) {
        text = text.sliced(fill(text));
        if (!text.isEmpty())
            startBlock();
    }
}

/// Adds as much of the text to the last block as belongs there, and returns how much that was.
qsizetype TextStore::fill(QByteArrayView text)
{
    StoredBlock &block = m_blocks.back();
    const qsizetype room = block.room();
    qsizetype taken = text.size();
    if (taken > room) {
        taken = text.first(room).lastIndexOf('\n') + 1;
        if (taken == 0 && !block.openLineMovesOn())
            taken = characterStart(text, room);
    }
    add(block, text.first(taken));
    return taken;
}

/// Makes a new last block, and moves the unfinished last line of the one before into it unless that is too long.
void TextStore::startBlock()
{
    StoredBlock fresh{PageMemory(blockCapacity), 0, Block{.begin = m_end, .utf16Begin = m_utf16End}};
    QByteArrayView moved;
    if (!m_blocks.empty()) {
        StoredBlock &full = m_blocks.back();
        if (full.openLineMovesOn()) {
            const qsizetype openLine = full.openLineBytes();
            moved = full.bytes().last(openLine);
            const auto utf16Length = static_cast<std::int32_t>(Utf8::utf16Length(moved));
            full.facts.size -= static_cast<std::int32_t>(openLine);
            full.facts.utf16Length -= utf16Length;
            full.facts.cells -= full.facts.openLine;
            full.facts.openLine = 0;
            m_end -= openLine;
            m_utf16End -= utf16Length;
            fresh.facts.begin = m_end;
            fresh.facts.utf16Begin = m_utf16End;
        }
    }
    // Adding a block leaves the others, and so the moved bytes, where they are.
    add(m_blocks.emplace_back(std::move(fresh)), moved);
}

void TextStore::add(StoredBlock &block, QByteArrayView text)
{
    if (text.isEmpty())
        return;
    std::memcpy(block.memory.data() + block.offset + block.facts.size, text.data(),
                static_cast<std::size_t>(text.size()));
    TextMeasure measure(block.facts.openLine);
    measure.add(text);
    block.facts.size += static_cast<std::int32_t>(text.size());
    block.facts.utf16Length += measure.utf16Length();
    block.facts.lineFeeds += measure.lineFeeds();
    block.facts.cells += measure.cells();
    block.facts.longestEndedLine = std::max(block.facts.longestEndedLine, measure.longestEndedLine());
    block.facts.openLine = measure.openLine();
    m_end += text.size();
    m_utf16End += measure.utf16Length();
}

void TextStore::dropFront(Position newBegin)
{
    while (!m_blocks.empty() && m_blocks.front().facts.end() <= newBegin) {
        m_blocks.pop_front();
        ++m_firstBlock;
    }
    m_begin = newBegin;
    if (m_blocks.empty() || m_blocks.front().facts.begin == newBegin)
        return;
    StoredBlock &front = m_blocks.front();
    const QByteArrayView dropped = front.bytes().first(newBegin - front.facts.begin);
    TextMeasure measure;
    measure.add(dropped);
    front.offset += static_cast<std::int32_t>(dropped.size());
    front.facts.begin = newBegin;
    front.facts.size -= static_cast<std::int32_t>(dropped.size());
    front.facts.utf16Begin += measure.utf16Length();
    front.facts.utf16Length -= measure.utf16Length();
    front.facts.lineFeeds -= measure.lineFeeds();
    // A line cut here keeps its full width as a bound; tabs in what is left of it may stand wider than before.
    front.facts.cells = std::max(0, front.facts.cells - measure.cells());
}

QByteArrayView TextStore::bytes(BlockNumber number) const
{
    return stored(number).bytes();
}

TextStore::BlockNumber TextStore::blockAt(Position position) const
{
    const auto after =
        std::upper_bound(m_blocks.begin(), m_blocks.end(), position,
                         [](Position value, const StoredBlock &block) { return value < block.facts.begin; });
    return m_firstBlock + std::max<BlockNumber>(0, std::distance(m_blocks.begin(), after) - 1);
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
    const BlockNumber number = blockAt(std::clamp(position, m_begin, m_end));
    const QByteArrayView before = bytesBetween(number, block(number).begin, position);
    const qint64 inside = block(number).isAscii() ? before.size() : Utf8::utf16Length(before);
    return block(number).utf16Begin + inside - m_blocks.front().facts.utf16Begin;
}

TextStore::Position TextStore::positionAtUtf16(qint64 offset) const
{
    if (isEmpty() || offset <= 0)
        return m_begin;
    const qint64 absolute = offset + m_blocks.front().facts.utf16Begin;
    if (absolute >= m_utf16End)
        return m_end;
    const auto after =
        std::upper_bound(m_blocks.begin(), m_blocks.end(), absolute,
                         [](qint64 value, const StoredBlock &block) { return value < block.facts.utf16Begin; });
    const StoredBlock &found = *std::prev(after);
    const qint64 inside = absolute - found.facts.utf16Begin;
    if (found.facts.isAscii())
        return found.facts.begin + inside;
    const QByteArrayView text = found.bytes();
    qsizetype at = 0;
    for (qint64 units = 0; units < inside;) {
        const int length = Utf8::lengthOf(text[at]);
        units += length == 4 ? 2 : 1;
        if (units <= inside)
            at += length;
    }
    return found.facts.begin + at;
}

TextStore::Position TextStore::lineBegin(Position position) const
{
    if (isEmpty())
        return m_begin;
    for (BlockNumber number = blockAt(position); number >= firstBlock(); --number) {
        const QByteArrayView before = bytesBetween(number, block(number).begin, position);
        const qsizetype lineFeed = block(number).lineFeeds > 0 ? before.lastIndexOf('\n') : -1;
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
        const QByteArrayView after = bytesBetween(number, position, block(number).end());
        const qsizetype lineFeed = block(number).lineFeeds > 0 ? after.indexOf('\n') : -1;
        if (lineFeed >= 0)
            return block(number).end() - after.size() + lineFeed + 1;
    }
    return m_end;
}
