#pragma once

// Packed blocks, laid one behind another in slabs of a mebibyte. The newest slabs are in memory, older ones in a file,
// and a slab for which there was no room is missing. Nothing but BlockStore knows of it: its lock guards all calls
// that do not say otherwise, and what takes long (opening, writing, reading, releasing) is handed out, to be done
// without the lock.
//
//   in memory ──startFiling──▶ being filed ──filed──▶ filed
//       └──────────letGoOldest, letGoWaiting──────────┴──▶ missing

#include "Transcript/NamelessFile.h"
#include "Transcript/PageMemory.h"

#include <QByteArrayView>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

class PackedBlocks
{
public:
    /// Counted from the first block ever made.
    using Number = std::int64_t;
    /// Counted in bytes from the first slab ever made.
    using Place = std::int64_t;
    /// Things to be released without the lock.
    using Unused = std::vector<std::shared_ptr<const void>>;

    /// Releases them, and lets other threads have the process's memory in between. Any thread, without the lock.
    static void giveBack(Unused unused);

    static constexpr std::int64_t slabSize = std::int64_t{1024} * 1024;

    /// Gives back to the system what is kept to be filled again. Any thread, without the lock.
    void giveBackKept() const { m_pool->clear(); }

    /// Where the bytes at a place are: in memory or in the file, as long as this lives; else they are missing.
    struct Location {
        std::shared_ptr<const PageMemory> memory;
        std::shared_ptr<const NamelessFile> file;
        /// Therein.
        std::int64_t offset = 0;
    };

    /// One slab on its way to the file.
    struct Filing {
        std::shared_ptr<const PageMemory> memory;
        std::int32_t size = 0;
        std::int64_t slab = 0;
        /// None before the first slab is filed: to be opened.
        std::shared_ptr<const NamelessFile> file;
        /// Where in the file, in slabs.
        std::int64_t slot = 0;
        /// The file has to grow for it.
        bool grows = false;
    };

    /// Room for a packed block.
    struct Room {
        std::shared_ptr<PageMemory> memory;
        /// Therein.
        std::int64_t offset = 0;
        Place place = 0;
    };
    /// Makes room for a packed block of that size, which is to be copied there; then it is there. Blocks come
    /// nearly in the order of their numbers, for two threads pack them. Throws std::bad_alloc.
    Room makeRoom(qsizetype size, Number number);
    void fill(const Room &room);
    Location find(Place place) const;
    /// Forgets the slabs whose blocks are all before `first`.
    void dropFront(Number first, Unused &unused);
    /// Bytes of memory that hold blocks.
    std::int64_t memory() const { return m_memory; }

    /// The oldest full slab in memory is to be written; none when there is none. One at a time.
    std::optional<Filing> startFiling();
    /// It was written, or not.
    void filed(const Filing &filing, bool isWritten, Unused &unused);

    /// The blocks of a slab: of a half-open range those that are there. Some of it may be in another slab.
    struct Numbers {
        Number begin = 0;
        Number end = 0;
        /// Where the slab begins.
        Place slab = 0;

        bool areAt(Place place) const { return place >= slab && place < slab + slabSize; }
    };
    /// Lets the oldest slab go, wherever it is, so that there is room for another.
    Numbers letGoOldest(Unused &unused);
    /// Lets the slab go that has waited longest for the file.
    Numbers letGoWaiting(Unused &unused);

private:
    /// So many are kept to be filled again.
    static constexpr std::size_t mostFree = 4;

    struct SlabMemory : PageMemory {
        SlabMemory() : PageMemory(slabSize) {}
    };

    struct Slab {
        /// While in memory.
        std::shared_ptr<PageMemory> memory;
        /// Once filed; else -1.
        std::int64_t slot = -1;
        std::int32_t size = 0;
        /// Blocks that are being copied there.
        int unfilled = 0;
        Numbers numbers;

        bool isMissing() const { return !memory && slot < 0; }
    };

    Slab *slabOf(Place place);
    void letGo(Slab &slab, Unused &unused);
    void closeEmptyFile(Unused &unused);

    const std::shared_ptr<PagePool<SlabMemory>> m_pool = std::make_shared<PagePool<SlabMemory>>(mostFree);
    std::deque<Slab> m_slabs;
    std::int64_t m_firstSlab = 0;
    std::int64_t m_memory = 0;
    /// No slab before it is in memory.
    std::int64_t m_oldestInMemory = 0;
    /// The slab that is being filed; -1 for none.
    std::int64_t m_filing = -1;
    std::shared_ptr<const NamelessFile> m_file;
    /// The file's length, in slabs.
    std::int64_t m_slots = 0;
    std::deque<std::int64_t> m_freeSlots;
};
