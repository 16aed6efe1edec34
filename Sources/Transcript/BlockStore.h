#pragma once

// The blocks of a text by their numbers, wherever their bytes are: the newest as they are, older ones packed
// (BlockSeal.h), in memory or in a file (PackedBlocks.h). One thread, the main one, adds blocks and forgets them; any
// thread reads them. A thread of the store's own packs, files and gives memory back, so that whoever adds or forgets
// never waits for the disk.
//
// Where packing does not keep up, who adds blocks packs one for each: that is the work of half a millisecond. Where the
// disk does not keep up, or has no room, blocks are let go: what is read in their place is a sentence, and `loss` tells
// of it.

#include "Transcript/BlockSeal.h"
#include "Transcript/PackedBlocks.h"
#include "Transcript/PagedList.h"
#include "Transcript/TextBlock.h"
#include "Transcript/TextCount.h"
#include "Transcript/TextStorage.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <set>

class BlockStore : public std::enable_shared_from_this<BlockStore>
{
public:
    using Number = PackedBlocks::Number;
    using BlockPointer = std::shared_ptr<const TextBlock>;

    enum class Cause { none, diskIsFull, noFile, diskIsSlow };
    /// What could not be kept.
    struct Loss {
        /// The blocks before it are lost.
        Number front = 0;
        /// Why, if any was.
        Cause cause = Cause::none;
        /// Bytes of text that are lost behind that, because the disk is slow.
        std::int64_t inside = 0;
    };

    /// `onLoss` is called on any thread, and not after `end`.
    static std::shared_ptr<BlockStore> make(const TextStorage &storage, std::function<void()> onLoss);

    // --- The main thread.

    /// The numbers, as a half-open range.
    Number first() const { return m_first; }
    Number end() const { return m_first + m_entries.size(); }
    /// All text before a block, since the first byte ever appended.
    const TextCount &before(Number number) const { return m_entries[number - m_first].before; }

    /// Begins another block with what has moved there from the end of the one before, which is full: nothing of it
    /// changes any more. Throws std::bad_alloc.
    std::shared_ptr<TextBlock> startBlock(const TextCount &before, QByteArrayView moved);
    /// Forgets the blocks before a number. What a pin holds stays readable.
    void dropFront(Number first);
    /// Nothing is packed or filed any more; what is read by pins stays.
    void stop();

    /// Bytes of memory that all of it takes.
    std::int64_t memory() const;

    // --- Any thread.

    /// The block; a sentence in its place when it is missing. `size` and `kinds` of the last block are its writer's
    /// alone.
    BlockPointer read(Number number) const;
    /// The block that holds a position, and from where to where it reaches in a text that ends at `end`.
    struct Found {
        BlockPointer block;
        std::int64_t begin = 0;
        std::int64_t end = 0;
    };
    Found readAt(std::int64_t position, std::int64_t end) const;
    /// The block that holds a position; the last one for the end. There must be one.
    Number blockAt(std::int64_t position) const;

    /// What comes from a block on stays readable until it is unpinned. Only a disk that is full or too slow takes of
    /// it.
    void pin(Number number);
    void unpin(Number number);

    Loss loss() const
    {
        const std::lock_guard guard(m_lock);
        return m_loss;
    }

private:
    struct Entry {
        TextCount before;
        /// Once packed; else -1.
        PackedBlocks::Place place = -1;
        std::int32_t packedSize = 0;
        std::int32_t contentSize = 0;
    };
    /// Where the bytes of a block are.
    struct Source {
        Number number = 0;
        BlockPointer plain;
        PackedBlocks::Location packed;
        std::int32_t packedSize = 0;
        std::int32_t contentSize = 0;
        std::int64_t textSize = 0;
    };
    using Lock = std::unique_lock<std::mutex>;

    BlockStore(const TextStorage &storage, std::function<void()> onLoss);

    Entry &entry(Number number) { return m_entries[number - m_first]; }
    const Entry &entry(Number number) const { return m_entries[number - m_first]; }
    /// Bytes; not of the last block.
    std::int64_t textSize(Number number) const { return entry(number + 1).before.bytes - entry(number).before.bytes; }
    Number numberAt(std::int64_t position) const;
    Source source(Number number) const;
    BlockPointer load(const Source &source) const;
    bool isPackingDue(std::size_t patience) const;
    void release(PackedBlocks::Unused &unused);
    void wake(Lock &lock);
    void work();
    void packOne(Lock &lock, BlockPacker &packer);
    bool fileOne(Lock &lock);
    bool giveBack(Lock &lock);

    const TextStorage m_storage;
    const BlockKey m_key;
    const std::shared_ptr<PagePool<TextBlock>> m_pool = std::make_shared<PagePool<TextBlock>>(TextBlock::mostFree);
    BlockPacker m_ownPacker{m_key}; // the main thread's

    mutable std::mutex m_lock;
    std::condition_variable m_wake;
    std::function<void()> m_onLoss;
    // Only the main thread changes the list, and so reads it without the lock; the others lock.
    PagedList<Entry> m_entries;
    Number m_first = 0;
    /// The blocks that are not packed, from m_firstPlain on; none in the place of one that was packed out of turn.
    std::deque<std::shared_ptr<TextBlock>> m_plain;
    Number m_firstPlain = 0;
    Number m_nextToPack = 0;
    PackedBlocks m_packed;
    PackedBlocks::Unused m_unused;
    /// The main thread needs nothing before.
    Number m_wanted = 0;
    std::multiset<Number> m_pins;
    Loss m_loss;
    bool m_isWorking = false;
    bool m_isStopped = false;
};
