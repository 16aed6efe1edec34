#include "Transcript/PackedBlocks.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

void PackedBlocks::giveBack(Unused unused)
{
    constexpr std::size_t step = 16;
    constexpr auto nap = std::chrono::microseconds(200);
    while (!unused.empty()) {
        unused.pop_back();
        // All threads of a process share one lock on its memory: without a gap the window's would hardly get it.
        if (unused.size() % step == step - 1)
            std::this_thread::sleep_for(nap);
    }
}

PackedBlocks::Room PackedBlocks::makeRoom(qsizetype size, Number number)
{
    if (m_slabs.empty() || !m_slabs.back().memory || m_slabs.back().size + size > slabSize) {
        Slab &slab = m_slabs.emplace_back();
        slab.memory = m_pool->take();
        slab.numbers = {number, number, (m_firstSlab + static_cast<std::int64_t>(m_slabs.size()) - 1) * slabSize};
    }
    Slab &slab = m_slabs.back();
    const std::int32_t offset = slab.size;
    slab.size += static_cast<std::int32_t>(size);
    ++slab.unfilled;
    slab.numbers.begin = std::min(slab.numbers.begin, number);
    slab.numbers.end = std::max(slab.numbers.end, number + 1);
    m_memory += size;
    return {slab.memory, offset, slab.numbers.slab + offset};
}

void PackedBlocks::fill(const Room &room)
{
    if (Slab *const slab = slabOf(room.place))
        --slab->unfilled;
}

PackedBlocks::Slab *PackedBlocks::slabOf(Place place)
{
    const std::int64_t index = place / slabSize - m_firstSlab;
    return index < 0 ? nullptr : &m_slabs[static_cast<std::size_t>(index)];
}

PackedBlocks::Location PackedBlocks::find(Place place) const
{
    const std::int64_t index = place / slabSize - m_firstSlab;
    if (index < 0)
        return {};
    const Slab &slab = m_slabs[static_cast<std::size_t>(index)];
    if (slab.memory)
        return {slab.memory, nullptr, place % slabSize};
    if (slab.slot >= 0)
        return {nullptr, m_file, slab.slot * slabSize + place % slabSize};
    return {};
}

void PackedBlocks::dropFront(Number first, Unused &unused)
{
    while (!m_slabs.empty() && m_slabs.front().numbers.end <= first) {
        letGo(m_slabs.front(), unused);
        m_slabs.pop_front();
        ++m_firstSlab;
    }
    closeEmptyFile(unused);
}

void PackedBlocks::closeEmptyFile(Unused &unused)
{
    if (m_filing >= 0 || !m_file || static_cast<std::int64_t>(m_freeSlots.size()) < m_slots)
        return;
    unused.push_back(std::exchange(m_file, nullptr));
    m_slots = 0;
    m_freeSlots.clear();
}

std::optional<PackedBlocks::Filing> PackedBlocks::startFiling()
{
    m_oldestInMemory = std::max(m_oldestInMemory, m_firstSlab);
    const std::int64_t end = m_firstSlab + static_cast<std::int64_t>(m_slabs.size());
    while (m_oldestInMemory < end && !slabOf(m_oldestInMemory * slabSize)->memory)
        ++m_oldestInMemory;
    // The last one is not full yet.
    if (m_oldestInMemory + 1 >= end || slabOf(m_oldestInMemory * slabSize)->unfilled > 0)
        return std::nullopt;
    const Slab *const oldest = slabOf(m_oldestInMemory * slabSize);
    m_filing = m_oldestInMemory;
    Filing filing{.memory = oldest->memory, .size = oldest->size, .slab = m_filing, .file = m_file};
    filing.grows = m_freeSlots.empty();
    filing.slot = filing.grows ? m_slots : m_freeSlots.back();
    if (!filing.grows)
        m_freeSlots.pop_back();
    return filing;
}

void PackedBlocks::filed(const Filing &filing, bool isWritten, Unused &unused)
{
    m_filing = -1;
    m_file = filing.file;
    if (isWritten && filing.grows)
        ++m_slots;
    Slab *const slab = slabOf(filing.slab * slabSize);
    if (isWritten && slab != nullptr && slab->memory) {
        m_memory -= slab->size;
        unused.push_back(std::exchange(slab->memory, nullptr));
        slab->slot = filing.slot;
    } else if (isWritten || !filing.grows) {
        // Dropped meanwhile; or a part of the disk that could not be written now, and is tried last.
        m_freeSlots.push_front(filing.slot);
    }
    closeEmptyFile(unused);
}

PackedBlocks::Numbers PackedBlocks::letGoOldest(Unused &unused)
{
    const auto oldest =
        std::find_if_not(m_slabs.begin(), m_slabs.end(), [](const Slab &slab) { return slab.isMissing(); });
    if (oldest == m_slabs.end())
        return {};
    letGo(*oldest, unused);
    return oldest->numbers;
}

PackedBlocks::Numbers PackedBlocks::letGoWaiting(Unused &unused)
{
    for (std::size_t index = 0; index + 1 < m_slabs.size(); ++index) {
        Slab &slab = m_slabs[index];
        if (!slab.memory || m_firstSlab + static_cast<std::int64_t>(index) == m_filing)
            continue;
        letGo(slab, unused);
        return slab.numbers;
    }
    return {};
}

void PackedBlocks::letGo(Slab &slab, Unused &unused)
{
    if (slab.memory) {
        m_memory -= slab.size;
        unused.push_back(std::exchange(slab.memory, nullptr));
    } else if (slab.slot >= 0) {
        m_freeSlots.push_back(std::exchange(slab.slot, -1));
    }
}
