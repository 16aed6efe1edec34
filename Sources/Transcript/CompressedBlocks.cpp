#include "Transcript/CompressedBlocks.h"

#include <QtGlobal>

#include <zstd.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>

namespace
{

/// The quickest that also shortens text without repetitions (base64, say) by a quarter.
constexpr int level = 1;
constexpr std::int64_t slabSize = std::int64_t{8} * 1024 * 1024;

} // namespace

void CompressedBlocks::Release::operator()(ZSTD_CCtx_s *context) const
{
    ZSTD_freeCCtx(context);
}

void CompressedBlocks::Release::operator()(ZSTD_DCtx_s *context) const
{
    ZSTD_freeDCtx(context);
}

char *CompressedBlocks::at(std::int64_t place) const
{
    return m_slabs[static_cast<std::size_t>(place / slabSize - m_firstSlab)].data() + place % slabSize;
}

void CompressedBlocks::append(QByteArrayView block)
{
    if (!m_compression)
        m_compression.reset(ZSTD_createCCtx());
    if (!m_compression)
        throw std::bad_alloc();

    // A block lies on one slab. What stays free at a slab's end is never written and so takes no memory.
    if (m_end % slabSize + block.size() > slabSize)
        m_end += slabSize - m_end % slabSize;
    if (m_end / slabSize == m_firstSlab + static_cast<std::int64_t>(m_slabs.size()))
        m_slabs.emplace_back(slabSize);

    char *const place = at(m_end);
    const auto size = static_cast<std::size_t>(block.size());
    std::size_t compressedSize = ZSTD_compressCCtx(m_compression.get(), place, size - 1, block.data(), size, level);
    if (ZSTD_isError(compressedSize) != 0) {
        std::memcpy(place, block.data(), size);
        compressedSize = size;
    }
    m_entries.append({m_end, static_cast<std::int32_t>(compressedSize), static_cast<std::int32_t>(size)});
    m_end += static_cast<std::int64_t>(compressedSize);
}

QByteArrayView CompressedBlocks::read(Index index)
{
    const Entry &entry = m_entries[index];
    if (entry.compressedSize == entry.size)
        return {at(entry.place), entry.size};
    const Index number = m_dropped + index;
    const auto found = std::find_if(m_decompressed.begin(), m_decompressed.end(),
                                    [number](const Decompressed &each) { return each.number == number; });
    if (found == m_decompressed.end())
        return {decompress(entry, number).data(), entry.size};
    std::rotate(m_decompressed.begin(), found, std::next(found));
    return {m_decompressed.front().memory.data(), entry.size};
}

/// Decompresses the block into the place of the one that was not read for the longest time.
const PageMemory &CompressedBlocks::decompress(const Entry &entry, Index number)
{
    if (!m_decompression)
        m_decompression.reset(ZSTD_createDCtx());
    if (!m_decompression)
        throw std::bad_alloc();
    if (m_decompressed.size() < mostDecompressed)
        m_decompressed.push_back({-1, PageMemory(static_cast<std::size_t>(m_largestBlock))});
    std::rotate(m_decompressed.begin(), std::prev(m_decompressed.end()), m_decompressed.end());
    Decompressed &decompressed = m_decompressed.front();
    decompressed.number = number;
    const auto size = static_cast<std::size_t>(entry.size);
    const std::size_t decompressedSize =
        ZSTD_decompressDCtx(m_decompression.get(), decompressed.memory.data(), size, at(entry.place),
                            static_cast<std::size_t>(entry.compressedSize));
    if (decompressedSize != size)
        qFatal("A block of output cannot be decompressed: the memory that holds it was damaged.");
    return decompressed.memory;
}

void CompressedBlocks::dropFront(Index count)
{
    m_entries.dropFront(count);
    m_dropped += count;
    if (m_entries.isEmpty()) {
        PageMemory::giveBackFront(m_slabs, m_slabs.size());
        m_firstSlab = m_end = 0;
        m_decompressed.clear();
        m_compression.reset();
        m_decompression.reset();
        return;
    }
    const std::int64_t slab = m_entries[0].place / slabSize;
    PageMemory::giveBackFront(m_slabs, static_cast<std::size_t>(slab - m_firstSlab));
    m_firstSlab = slab;
}

std::int64_t CompressedBlocks::memory() const
{
    const std::int64_t decompressed = static_cast<std::int64_t>(m_decompressed.size()) * m_largestBlock;
    return m_end - m_firstSlab * slabSize + m_entries.memory() + decompressed;
}
