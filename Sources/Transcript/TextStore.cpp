#include "Transcript/TextStore.h"

#include "Text/GraphemeBreaker.h"
#include "Text/Utf8.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

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

/// Takes the marks from `begin` on off a block, for the one that begins there.
std::vector<KindMark> takeKinds(TextBlock &block, std::int32_t begin)
{
    std::vector<KindMark> taken;
    while (block.kinds.back().begin > begin || (block.kinds.back().begin == begin && block.kinds.size() > 1)) {
        taken.insert(taken.begin(), {block.kinds.back().begin - begin, block.kinds.back().kind});
        block.kinds.pop_back();
    }
    if (taken.empty() || taken.front().begin > 0)
        taken.insert(taken.begin(), {0, block.kinds.back().kind});
    return taken;
}

} // namespace

TextStore::TextStore(const TextStorage &storage, std::function<void()> onLoss)
    : m_blocks(BlockStore::make(storage, std::move(onLoss)))
{
}

TextStore::~TextStore()
{
    m_blocks->stop();
}

void TextStore::append(QByteArrayView text, OutputKind kind)
{
    m_kind = kind;
    if (!m_last && !text.isEmpty())
        startBlock(text);
    if (m_last)
        markKind();
    while (!text.isEmpty()) {
        text = text.sliced(fill(text));
        if (!text.isEmpty())
            startBlock(text);
    }
}

/// What is added to the last block from here on is of the kind appended last.
void TextStore::markKind()
{
    std::vector<KindMark> &kinds = m_last->kinds;
    if (!kinds.empty() && kinds.back().kind == m_kind)
        return;
    if (!kinds.empty() && kinds.back().begin == m_last->size)
        kinds.pop_back();
    if (kinds.empty() || kinds.back().kind != m_kind)
        kinds.push_back({m_last->size, m_kind});
}

/// Adds as much of the text to the last block as belongs there, and returns how much that was.
qsizetype TextStore::fill(QByteArrayView text)
{
    if (m_last->kinds.size() >= TextBlock::mostKinds)
        return 0;
    const qsizetype room = blockCapacity - m_last->size;
    qsizetype taken = text.size();
    if (taken > room) {
        taken = text.first(room).lastIndexOf('\n') + 1;
        if (taken == 0 && !openLineMovesOn())
            taken = characterStart(text, room);
    }
    addToLast(text.first(taken));
    return taken;
}

/// The bytes of the last block's unfinished last line. Exact up to `longestMovedLine`; more is not looked at.
qsizetype TextStore::openLineBytes() const
{
    const QByteArrayView tail = m_last->text().last(std::min<qsizetype>(m_last->size, longestMovedLine + 1));
    return tail.size() - 1 - tail.lastIndexOf('\n');
}

/// Whether the unfinished last line goes to the next block when this one is full.
bool TextStore::openLineMovesOn() const
{
    const qsizetype openLine = openLineBytes();
    return openLine <= longestMovedLine && openLine < m_last->size;
}

/// How much of the end of the last block, which is full, goes to the next: its unfinished last line, or where that is
/// too long, the character that goes on in the text to come.
qsizetype TextStore::bytesThatMoveOn(QByteArrayView next) const
{
    if (openLineMovesOn())
        return openLineBytes();
    const QByteArrayView tail = m_last->text().last(std::min<qsizetype>(m_last->size, stretch));
    const QByteArray joined = tail.toByteArray().append(next.first(Utf8::lengthOf(next.front())));
    const qsizetype start = characterStart(joined, tail.size());
    return start == 0 ? 0 : tail.size() - start;
}

/// Makes a new last block for `next`, and moves what belongs together with it from the one before.
void TextStore::startBlock(QByteArrayView next)
{
    QByteArray moved;
    std::vector<KindMark> kinds;
    if (m_last) {
        moved = m_last->text().last(bytesThatMoveOn(next)).toByteArray();
        m_last->size -= static_cast<std::int32_t>(moved.size());
        kinds = takeKinds(*m_last, m_last->size);
    }
    m_last = m_blocks->startBlock(m_end - TextCount::of(moved), moved);
    m_last->kinds = std::move(kinds);
    markKind();
}

void TextStore::addToLast(QByteArrayView text)
{
    if (text.isEmpty())
        return;
    std::memcpy(m_last->memory.data() + m_last->size, text.data(), static_cast<std::size_t>(text.size()));
    m_last->size += static_cast<std::int32_t>(text.size());
    m_end += TextCount::of(text);
}

void TextStore::dropBefore(Position position)
{
    const bool isAll = position >= end();
    if (firstBlock() == endBlock())
        return;
    if (isAll)
        m_last.reset();
    m_blocks->dropFront(isAll ? endBlock() : blockAt(position));
    m_held.remove_if([this](const Held &held) { return held.number < firstBlock(); });
}

TextCount TextStore::before(Position position, BlockNumber number) const
{
    if (position >= end())
        return m_end;
    const TextBlock &block = read(number);
    const Position inside = position - before(number).bytes;
    if (block.isMissing)
        return before(number) + TextCount{inside, inside, 0};
    return before(number) + TextCount::of(block.text().first(inside));
}

const TextBlock &TextStore::read(BlockNumber number) const
{
    if (m_last && number + 1 == endBlock())
        return *m_last;
    const auto found =
        std::find_if(m_held.begin(), m_held.end(), [number](const Held &held) { return held.number == number; });
    if (found != m_held.end()) {
        m_held.splice(m_held.begin(), m_held, found);
        return *m_held.front().block;
    }
    if (m_held.size() == mostHeld)
        m_held.pop_back();
    m_held.push_front({number, m_blocks->read(number)});
    return *m_held.front().block;
}

std::int64_t TextStore::memory() const
{
    return m_blocks->memory() + static_cast<std::int64_t>(m_held.size()) * blockCapacity;
}
