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
constexpr std::int64_t shelfSize = std::int64_t{8} * 1024 * 1024;

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
    return m_shelves[static_cast<std::size_t>(place / shelfSize - m_firstShelf)].data() + place % shelfSize;
}

void CompressedBlocks::append(QByteArrayView block)
{
    if (!m_compression)
        m_compression.reset(ZSTD_createCCtx());
    if (!m_compression)
        throw std::bad_alloc();

    // A block lies on one shelf. What stays free at a shelf's end is never written and so takes no memory.
    if (m_end % shelfSize + block.size() > shelfSize)
        m_end += shelfSize - m_end % shelfSize;
    if (m_end / shelfSize == m_firstShelf + static_cast<std::int64_t>(m_shelves.size()))
        m_shelves.emplace_back(shelfSize);

    char *const place = at(m_end);
    const auto size = static_cast<std::size_t>(block.size());
    std::size_t packedSize = ZSTD_compressCCtx(m_compression.get(), place, size - 1, block.data(), size, level);
    if (ZSTD_isError(packedSize) != 0) {
        std::memcpy(place, block.data(), size);
        packedSize = size;
    }
    m_packed.append({m_end, static_cast<std::int32_t>(packedSize), static_cast<std::int32_t>(size)});
    m_end += static_cast<std::int64_t>(packedSize);
}

QByteArrayView CompressedBlocks::read(Index index)
{
    const Packed &packed = m_packed[index];
    if (packed.packedSize == packed.size)
        return {at(packed.place), packed.size};
    const Index number = m_dropped + index;
    const auto found = std::find_if(m_unpacked.begin(), m_unpacked.end(),
                                    [number](const Unpacked &each) { return each.number == number; });
    if (found == m_unpacked.end())
        return {unpack(packed, number).data(), packed.size};
    std::rotate(m_unpacked.begin(), found, std::next(found));
    return {m_unpacked.front().memory.data(), packed.size};
}

/// Unpacks the block in the place of the one that was not read for the longest time.
const PageMemory &CompressedBlocks::unpack(const Packed &packed, Index number)
{
    if (!m_decompression)
        m_decompression.reset(ZSTD_createDCtx());
    if (!m_decompression)
        throw std::bad_alloc();
    if (m_unpacked.size() < mostUnpacked)
        m_unpacked.push_back({-1, PageMemory(static_cast<std::size_t>(m_largestBlock))});
    std::rotate(m_unpacked.begin(), std::prev(m_unpacked.end()), m_unpacked.end());
    Unpacked &unpacked = m_unpacked.front();
    unpacked.number = number;
    const auto size = static_cast<std::size_t>(packed.size);
    const std::size_t unpackedSize = ZSTD_decompressDCtx(m_decompression.get(), unpacked.memory.data(), size,
                                                         at(packed.place), static_cast<std::size_t>(packed.packedSize));
    if (unpackedSize != size)
        qFatal("A block of output cannot be unpacked: the memory that holds it was damaged.");
    return unpacked.memory;
}

void CompressedBlocks::dropFront(Index count)
{
    m_packed.dropFront(count);
    m_dropped += count;
    if (m_packed.isEmpty()) {
        PageMemory::giveBackFront(m_shelves, m_shelves.size());
        m_firstShelf = m_end = 0;
        m_unpacked.clear();
        m_compression.reset();
        m_decompression.reset();
        return;
    }
    const std::int64_t shelf = m_packed[0].place / shelfSize;
    PageMemory::giveBackFront(m_shelves, static_cast<std::size_t>(shelf - m_firstShelf));
    m_firstShelf = shelf;
}

std::int64_t CompressedBlocks::memory() const
{
    const std::int64_t unpacked = static_cast<std::int64_t>(m_unpacked.size()) * m_largestBlock;
    return m_end - m_firstShelf * shelfSize + m_packed.memory() + unpacked;
}
