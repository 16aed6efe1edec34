#pragma once

// A list of small plain values that grows at its end and shrinks at its front, for millions of them: growing never
// moves what is there, and the memory goes back to the system as the list shrinks.

#include "Transcript/PageMemory.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <type_traits>

template <typename Value>
class PagedList
{
    static_assert(std::is_trivially_copyable_v<Value> && std::is_trivially_destructible_v<Value>);

public:
    /// Counted from the front, which is 0.
    using Index = std::int64_t;

    Index size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }

    Value &operator[](Index index) { return *place(m_dropped + index); }
    const Value &operator[](Index index) const { return *place(m_dropped + index); }

    void append(const Value &value)
    {
        const Index end = m_dropped + m_size;
        if (end == static_cast<Index>(m_pieces.size()) * perPiece)
            m_pieces.emplace_back(perPiece * sizeof(Value));
        std::construct_at(place(end), value);
        ++m_size;
    }

    void dropFront(Index count)
    {
        m_size -= count;
        m_dropped += count;
        const Index unused = m_size == 0 ? static_cast<Index>(m_pieces.size()) : m_dropped / perPiece;
        PageMemory::giveBackFront(m_pieces, static_cast<std::size_t>(unused));
        m_dropped = m_size == 0 ? 0 : m_dropped % perPiece;
    }

    /// Bytes of memory that hold the values.
    std::int64_t memory() const { return (m_dropped + m_size) * static_cast<std::int64_t>(sizeof(Value)); }

private:
    static constexpr Index perPiece = 16'384;

    Value *place(Index index) const
    {
        const PageMemory &piece = m_pieces[static_cast<std::size_t>(index / perPiece)];
        return reinterpret_cast<Value *>(piece.data()) + index % perPiece;
    }

    std::deque<PageMemory> m_pieces;
    /// The values of the first piece that were dropped.
    Index m_dropped = 0;
    Index m_size = 0;
};
