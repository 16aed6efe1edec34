#pragma once

// Memory for a block of text, taken from the system page by page as it is written and given back at once when it is
// released. The general allocator would keep it: "Clear" after a gigabyte of output must make the process small again.

#include <cstddef>
#include <deque>
#include <vector>

class PageMemory
{
public:
    /// Reserves `size` bytes; a page costs memory only once it is written. Throws std::bad_alloc when there is none.
    explicit PageMemory(std::size_t size);
    ~PageMemory();

    PageMemory(PageMemory &&other) noexcept;
    PageMemory &operator=(PageMemory &&other) noexcept;

    char *data() const { return m_data; }

    /// Takes the first `count` off the list and gives them back. The system needs 70 ms for a gigabyte, longer than a
    /// window may stand still: where they are many, they are gone a moment later, with a thread of their own.
    static void giveBackFront(std::deque<PageMemory> &list, std::size_t count);

private:
    static void giveBackSlowly(std::vector<PageMemory> given);

    char *m_data = nullptr;
    std::size_t m_size = 0;
};
