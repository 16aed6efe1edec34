#include "Transcript/TextSnapshot.h"

#include <algorithm>

TextSnapshot::TextSnapshot(std::shared_ptr<BlockStore> blocks, BlockStore::Number first, Position begin, Position end)
    : m_blocks(std::move(blocks)),
      m_first(first),
      m_begin(begin),
      m_end(end)
{
    m_blocks->pin(m_first);
}

TextSnapshot::~TextSnapshot()
{
    if (m_blocks)
        m_blocks->unpin(m_first);
}

TextSnapshot::TextSnapshot(TextSnapshot &&other) noexcept
    : m_blocks(std::move(other.m_blocks)),
      m_first(other.m_first),
      m_begin(std::exchange(other.m_begin, 0)),
      m_end(std::exchange(other.m_end, 0))
{
}

TextSnapshot &TextSnapshot::operator=(TextSnapshot &&other) noexcept
{
    std::swap(m_blocks, other.m_blocks);
    std::swap(m_first, other.m_first);
    std::swap(m_begin, other.m_begin);
    std::swap(m_end, other.m_end);
    return *this;
}

TextPiece TextSnapshot::pieceAt(Position position) const
{
    const BlockStore::Found found = m_blocks->readAt(position, m_end);
    TextPiece piece;
    piece.begin = std::max(found.begin, position);
    piece.end = std::min(found.end, m_end);
    piece.block = found.block;
    piece.isMissing = found.block->isMissing;
    // The size of a block that is still being filled is not known here.
    const char *const text = found.block->memory.data();
    piece.bytes = piece.isMissing ? found.block->text()
                                  : QByteArrayView(text + (piece.begin - found.begin), piece.end - piece.begin);
    return piece;
}
