#pragma once

// The text of a store from some place on, to its end, as it is at that moment: what one pane shows. Main thread only.
//
// Who reads asks for the bytes of one block at a time. Those of a missing block are a sentence, which is shorter than
// what the block is known to hold: positions behind it, up to the block's end, stand for nothing that can be seen.

#include "Transcript/TextSnapshot.h"
#include "Transcript/TextStore.h"

#include <QByteArrayView>
#include <QString>

class TextView
{
public:
    using Position = TextStore::Position;
    using BlockNumber = TextStore::BlockNumber;

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

    /// A stretch of text of one kind.
    struct Run {
        Position begin = 0;
        Position end = 0;
        OutputKind kind = OutputKind::out;
    };

    /// From the store's very beginning. `store` must outlive the view.
    explicit TextView(const TextStore &store) : m_store(store) {}

    /// Begins at a later position from now on, the first byte of a code point; an earlier one changes nothing. The
    /// store must not have dropped it.
    void moveBegin(Position position);

    Position begin() const { return m_begin.bytes; }
    Position end() const { return m_store.end(); }
    bool isEmpty() const { return begin() == end(); }

    /// The block numbers, as a half-open range; none of them is empty.
    BlockNumber firstBlock() const;
    BlockNumber endBlock() const { return isEmpty() ? firstBlock() : m_store.endBlock(); }
    Block block(BlockNumber number) const { return {before(number), before(number + 1) - before(number)}; }
    /// All text before a block, since the first byte ever appended; before endBlock(), all text.
    const TextCount &before(BlockNumber number) const
    {
        return number == firstBlock() ? m_begin : m_store.before(number);
    }
    /// The block's text, valid until the store changes or the bytes of `TextStore::mostHeld` other blocks have been
    /// asked for, by whichever call: a reader holds no more than one or two at a time.
    QByteArrayView bytes(BlockNumber number) const;
    /// The block that holds `position`; the last one for the end. There must be text.
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

    /// The stretch of one kind around `position`, as far as its block reaches; the last one for the end.
    Run runAt(Position position) const;

    /// What the view holds now, for reading on another thread.
    TextSnapshot snapshot() const;

private:
    Position codePointAt(Position position) const;
    QByteArrayView bytesBetween(BlockNumber number, Position from, Position to) const;

    const TextStore &m_store;
    /// All text before the view.
    TextCount m_begin;
    /// Not behind the block that holds the beginning.
    mutable BlockNumber m_firstBlock = 0;
};
