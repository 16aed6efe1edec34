#pragma once

// An append-only store of UTF-8 text in blocks. Main thread only.
//
// A position is a byte offset counted from the first byte ever appended; dropping the front or clearing moves begin()
// and renumbers nothing, so a position never comes to mean another place.
//
// There is no index of lines: of each block it is known how much text comes before it (bytes, UTF-16 units, line
// feeds), a search among the blocks finds the right one, and a scan inside one block is a matter of microseconds. A
// block begins at the start of a line where it can: when one is full, its unfinished last line moves on to the next.
// Only a line longer than `longestMovedLine` continues in another block. A block never cuts a code point, nor a
// character as a reader sees it unless that is monstrous.
//
// Who reads asks for the bytes of one block at a time, so where a block's bytes really are is this class's own affair:
// those near the end as they are, for speed, all others compressed (CompressedBlocks.h), so that hours of a chatty
// script fit into memory. What is known of a block, its bytes apart, is always at hand.

#include "Transcript/CompressedBlocks.h"
#include "Transcript/PageMemory.h"
#include "Transcript/PagedList.h"
#include "Transcript/TextCount.h"

#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <deque>

class TextStore
{
public:
    using Position = qint64;
    /// Blocks are numbered from the first ever made; a block keeps its number.
    using BlockNumber = qint64;

    static constexpr std::int32_t blockCapacity = 128 * 1024;
    static constexpr std::int32_t longestMovedLine = 16 * 1024;

    /// What is known of a block without looking at its bytes.
    struct Block {
        /// All text before the block, since the first byte ever appended.
        TextCount before;
        TextCount size;

        Position begin() const { return before.bytes; }
        Position end() const { return before.bytes + size.bytes; }
        bool isAscii() const { return size.utf16 == size.bytes; }

        friend bool operator==(const Block &, const Block &) = default;
    };

    /// So many blocks at the end are left uncompressed: what a run of common size prints never is compressed.
    static constexpr std::size_t usualPlainBlocks = 1024;
    /// At least two: one fills up while the one before it hands on its unfinished line.
    explicit TextStore(std::size_t plainBlocks = usualPlainBlocks)
        : m_plainBlocks(std::max<std::size_t>(2, plainBlocks))
    {
    }

    /// Adds valid UTF-8 that holds whole code points. Views of bytes become invalid.
    void append(QByteArrayView text);
    /// Forgets everything before `newBegin`, the first byte of a code point. Views of bytes become invalid.
    void dropFront(Position newBegin);
    /// Forgets everything and gives the memory back to the system.
    void clear() { dropFront(end()); }

    Position begin() const { return m_blocks.isEmpty() ? end() : m_blocks[0].bytes; }
    Position end() const { return m_end.bytes; }
    bool isEmpty() const { return m_blocks.isEmpty(); }

    /// The block numbers, as a half-open range; none of them is empty.
    BlockNumber firstBlock() const { return m_firstBlock; }
    BlockNumber endBlock() const { return m_firstBlock + m_blocks.size(); }
    Block block(BlockNumber number) const { return {before(number), before(number + 1) - before(number)}; }
    /// All text before a block, since the first byte ever appended; before endBlock(), all text.
    const TextCount &before(BlockNumber number) const
    {
        return number == endBlock() ? m_end : m_blocks[number - m_firstBlock];
    }
    /// The block's text, valid until the store changes or the bytes of `CompressedBlocks::mostDecompressed` other
    /// blocks have been asked for, by whichever call: a reader holds no more than one or two at a time.
    QByteArrayView bytes(BlockNumber number) const;
    /// The block that holds `position`; the last one for the end. The store must not be empty.
    BlockNumber blockAt(Position position) const;

    /// A copy of the text between two positions.
    QString text(Position from, Position to) const;

    /// UTF-16 code units between begin() and `position`.
    qint64 utf16Offset(Position position) const;
    /// The position that many UTF-16 code units behind begin(); the code point's start when that is inside a pair, and
    /// end() past the end.
    Position positionAtUtf16(qint64 offset) const;

    /// The start of the line that holds `position`.
    Position lineBegin(Position position) const;
    /// Behind the line feed of the line that holds `position`; end() when it has none.
    Position lineEnd(Position position) const;

    /// Bytes of memory that all of it takes.
    std::int64_t memory() const;

private:
    /// Bytes of the front block's memory that were dropped.
    std::int32_t droppedOf(BlockNumber number) const { return number == m_firstBlock ? m_droppedOfFront : 0; }
    BlockNumber firstPlainBlock() const { return m_firstBlock + m_compressed.size(); }
    /// Exact up to `longestMovedLine`; more is not looked at.
    qsizetype openLineBytes(BlockNumber number) const
    {
        const QByteArrayView tail =
            bytes(number).last(std::min<qsizetype>(block(number).size.bytes, longestMovedLine + 1));
        return tail.size() - 1 - tail.lastIndexOf('\n');
    }
    bool openLineMovesOn(BlockNumber number) const;
    qsizetype bytesThatMoveOn(QByteArrayView next) const;
    qsizetype fill(QByteArrayView text);
    void startBlock(QByteArrayView next);
    PageMemory takeMemory();
    void addToLast(QByteArrayView text);
    Position codePointAt(Position position) const;
    QByteArrayView bytesBetween(BlockNumber number, Position from, Position to) const;

    const std::size_t m_plainBlocks;
    /// The text before each block.
    PagedList<TextCount> m_blocks;
    // The first blocks are compressed, the others plain.
    mutable CompressedBlocks m_compressed{blockCapacity};
    std::deque<PageMemory> m_plain;
    std::int32_t m_droppedOfFront = 0;
    BlockNumber m_firstBlock = 0;
    /// All text ever appended.
    TextCount m_end;
};
