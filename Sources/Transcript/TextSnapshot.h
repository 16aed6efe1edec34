#pragma once

// What a view of the output held at one moment, for reading on another thread: to save it or to search it. Nothing is
// copied. As long as the snapshot lives, its text stays readable, also when the store has forgotten it or is no more;
// it takes memory and room on the disk meanwhile. Only a disk that is nearly full, or too slow, takes text away.

#include "Transcript/BlockStore.h"

#include <QByteArrayView>

#include <cstdint>
#include <memory>
#include <utility>

/// A piece of a snapshot, at most one block. Valid by itself, also when the snapshot is gone.
struct TextPiece {
    using Position = std::int64_t;

    /// What it stands for; the next piece begins at its end.
    Position begin = 0;
    Position end = 0;
    /// Whole code points of UTF-8; a sentence of other length where the text is missing.
    QByteArrayView bytes;
    bool isMissing = false;
    /// Holds the bytes.
    BlockStore::BlockPointer block;
};

/// Made on the main thread; used, moved and destroyed on any one thread at a time.
class TextSnapshot
{
public:
    using Position = TextPiece::Position;

    /// Of nothing.
    TextSnapshot() = default;
    /// Of the text between two positions, of which the first is in the block `first`.
    TextSnapshot(std::shared_ptr<BlockStore> blocks, BlockStore::Number first, Position begin, Position end);
    ~TextSnapshot();
    TextSnapshot(TextSnapshot &&other) noexcept;
    TextSnapshot &operator=(TextSnapshot &&other) noexcept;

    Position begin() const { return m_begin; }
    Position end() const { return m_end; }
    bool isEmpty() const { return m_begin == m_end; }

    /// The text from a position, which is before the end, to the end of its block.
    TextPiece pieceAt(Position position) const;

private:
    std::shared_ptr<BlockStore> m_blocks;
    BlockStore::Number m_first = 0;
    Position m_begin = 0;
    Position m_end = 0;
};
