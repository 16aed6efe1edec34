#pragma once

// An append-only store of UTF-8 text in blocks, and of which kind of output each piece is. Main thread only; who reads
// does so through a TextView, or on another thread through a TextSnapshot.
//
// A position is a byte offset counted from the first byte ever appended; forgetting the front renumbers nothing, so a
// position never comes to mean another place.
//
// There is no index of lines: of each block it is known how much text comes before it (bytes, UTF-16 units, line
// feeds), a search among the blocks finds the right one, and a scan inside one block is a matter of microseconds. A
// block begins at the start of a line where it can: when one is full, its unfinished last line moves on to the next.
// Only a line longer than `longestMovedLine` continues in another block. A block never cuts a code point, nor a
// character as a reader sees it unless that is monstrous.
//
// Where the bytes of a block really are is BlockStore's affair. What is known of a block, its bytes apart, is always at
// hand.

#include "Transcript/BlockStore.h"
#include "Transcript/OutputSegment.h"
#include "Transcript/TextCount.h"
#include "Transcript/TextStorage.h"

#include <QByteArrayView>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>

class TextStore
{
public:
    using Position = qint64;
    /// Blocks are numbered from the first ever made; a block keeps its number.
    using BlockNumber = qint64;

    static constexpr std::int32_t blockCapacity = TextBlock::capacity;
    static constexpr std::int32_t longestMovedLine = 16 * 1024;
    /// So many blocks can be read at the same time.
    static constexpr std::size_t mostHeld = 8;

    /// `onLoss` is called on any thread when text could not be kept.
    explicit TextStore(const TextStorage &storage = {}, std::function<void()> onLoss = {});
    ~TextStore();
    TextStore(const TextStore &) = delete;
    TextStore &operator=(const TextStore &) = delete;

    /// Adds valid UTF-8 that holds whole code points. Views of bytes become invalid.
    void append(QByteArrayView text, OutputKind kind = OutputKind::out);
    /// Forgets the blocks that are wholly before a position. Views of bytes become invalid.
    void dropBefore(Position position);

    Position end() const { return m_end.bytes; }
    /// The kind of what was appended last, if only an empty text.
    OutputKind lastKind() const { return m_kind; }

    /// The block numbers, as a half-open range; none of them is empty.
    BlockNumber firstBlock() const { return m_blocks->first(); }
    BlockNumber endBlock() const { return m_blocks->end(); }
    /// All text before a block, since the first byte ever appended; before endBlock(), all text.
    const TextCount &before(BlockNumber number) const
    {
        return number == endBlock() ? m_end : m_blocks->before(number);
    }
    /// All text before a position, which must not be before the first block.
    TextCount before(Position position, BlockNumber number) const;
    /// The block that holds `position`; the last one for the end. There must be one.
    BlockNumber blockAt(Position position) const { return m_blocks->blockAt(position); }

    /// The block's bytes and kinds, valid until the store changes or `mostHeld` other blocks have been read. Where the
    /// block is missing it is a sentence, no longer than the block was.
    const TextBlock &read(BlockNumber number) const;
    QByteArrayView bytes(BlockNumber number) const { return read(number).text(); }

    /// What could not be kept.
    BlockStore::Loss loss() const { return m_blocks->loss(); }
    /// The blocks, for reading on another thread, also when this store is no more.
    const std::shared_ptr<BlockStore> &blocks() const { return m_blocks; }

    /// Bytes of memory that all of it takes.
    std::int64_t memory() const;

private:
    struct Held {
        BlockNumber number = 0;
        BlockStore::BlockPointer block;
    };

    qsizetype openLineBytes() const;
    bool openLineMovesOn() const;
    qsizetype bytesThatMoveOn(QByteArrayView next) const;
    qsizetype fill(QByteArrayView text);
    void startBlock(QByteArrayView next);
    void addToLast(QByteArrayView text);
    void markKind();

    const std::shared_ptr<BlockStore> m_blocks;
    /// The block that is being filled; none when there is no block.
    std::shared_ptr<TextBlock> m_last;
    /// The blocks that were read last, newest first.
    mutable std::list<Held> m_held;
    /// All text ever appended.
    TextCount m_end;
    OutputKind m_kind = OutputKind::out;
};
