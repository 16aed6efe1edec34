#pragma once

// Memory for a block of text, taken from the system page by page as it is written and given back at once when it is
// released. The general allocator would keep it: "Clear" after a gigabyte of output must make the process small again.

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <utility>
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

/// Things with pages that nobody uses any more, kept to be filled again: new pages cost a window that stands beside a
/// flood more time than the work with them. A thing comes back by itself when its last holder lets go of it, on that
/// thread. Any thread; to be owned by a shared pointer.
template <typename Thing>
class PagePool : public std::enable_shared_from_this<PagePool<Thing>>
{
public:
    /// Keeps no more than so many.
    explicit PagePool(std::size_t mostFree) : m_mostFree(mostFree) {}

    /// One as it was left, or a new one. Throws std::bad_alloc when there is no memory.
    std::shared_ptr<Thing> take()
    {
        std::unique_ptr<Thing> thing;
        {
            const std::lock_guard guard(m_lock);
            if (!m_free.empty()) {
                thing = std::move(m_free.back());
                m_free.pop_back();
            }
        }
        if (!thing)
            thing = std::make_unique<Thing>();
        return {thing.release(),
                [pool = this->shared_from_this()](Thing *unused) { pool->giveBack(std::unique_ptr<Thing>(unused)); }};
    }

    /// Gives back to the system what is kept.
    void clear()
    {
        std::vector<std::unique_ptr<Thing>> unused;
        const std::lock_guard guard(m_lock);
        unused.swap(m_free);
    }

private:
    void giveBack(std::unique_ptr<Thing> thing)
    {
        const std::lock_guard guard(m_lock);
        if (m_free.size() < m_mostFree)
            m_free.push_back(std::move(thing));
    }

    const std::size_t m_mostFree;
    std::mutex m_lock; // guards what follows
    std::vector<std::unique_ptr<Thing>> m_free;
};
