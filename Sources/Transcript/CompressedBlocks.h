#pragma once

// The blocks of a text that are far from its end, compressed and laid one behind another. Nothing but TextStore knows
// of it. Main thread only.
//
// They stay in memory and are never written to a file: what a script prints may be secret, and nothing of a run's
// output is left on the disk. So what hardly compresses takes its place in memory, and whoever fills the store has to
// mind how much it holds.
//
// To read a block is to decompress it: about a tenth of a millisecond. The blocks that were read last stay
// decompressed.

#include "Transcript/PageMemory.h"
#include "Transcript/PagedList.h"

#include <QByteArrayView>

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

struct ZSTD_CCtx_s;
struct ZSTD_DCtx_s;

class CompressedBlocks
{
public:
    /// Counted from the front, which is 0.
    using Index = std::int64_t;

    /// So many blocks can be read at the same time.
    static constexpr std::size_t mostDecompressed = 8;

    /// For blocks of at most so many bytes.
    explicit CompressedBlocks(std::int32_t largestBlock) : m_largestBlock(largestBlock) {}

    Index size() const { return m_entries.size(); }

    /// Takes a copy of the block, which must not be empty. Throws std::bad_alloc when there is no memory.
    void append(QByteArrayView block);

    /// The block as it was appended. Valid until it is dropped or `mostDecompressed` others have been read since.
    QByteArrayView read(Index index);

    /// Forgets so many blocks; their memory goes back to the system.
    void dropFront(Index count);

    /// Bytes of memory that hold the blocks.
    std::int64_t memory() const;

private:
    /// Where a block lies, compressed; as large as the block itself when it does not compress.
    struct Entry {
        /// Counted through all slabs, from the first ever made.
        std::int64_t place = 0;
        std::int32_t compressedSize = 0;
        std::int32_t size = 0;
    };
    struct Decompressed {
        /// The block's number, counted from the first ever appended.
        Index number = 0;
        PageMemory memory;
    };
    struct Release {
        void operator()(ZSTD_CCtx_s *context) const;
        void operator()(ZSTD_DCtx_s *context) const;
    };

    char *at(std::int64_t place) const;
    const PageMemory &decompress(const Entry &entry, Index number);

    const std::int32_t m_largestBlock;
    PagedList<Entry> m_entries;
    /// The number of the first block, counted from the first ever appended.
    Index m_dropped = 0;
    std::deque<PageMemory> m_slabs;
    std::int64_t m_firstSlab = 0;
    /// Where the next block goes.
    std::int64_t m_end = 0;
    /// The blocks read last, newest first.
    std::vector<Decompressed> m_decompressed;
    std::unique_ptr<ZSTD_CCtx_s, Release> m_compression;
    std::unique_ptr<ZSTD_DCtx_s, Release> m_decompression;
};
