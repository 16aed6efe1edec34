#include "Transcript/PageMemory.h"

#include <chrono>
#include <iterator>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include <sys/mman.h>

PageMemory::PageMemory(std::size_t size) : m_size(size)
{
    void *const pages = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANON, -1, 0);
    if (pages == MAP_FAILED)
        throw std::bad_alloc();
    m_data = static_cast<char *>(pages);
}

PageMemory::~PageMemory()
{
    if (m_data)
        munmap(m_data, m_size);
}

PageMemory::PageMemory(PageMemory &&other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)),
      m_size(std::exchange(other.m_size, 0))
{
}

PageMemory &PageMemory::operator=(PageMemory &&other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    return *this;
}

void PageMemory::giveBackFront(std::deque<PageMemory> &list, std::size_t count)
{
    constexpr std::size_t many = std::size_t{16} * 1024 * 1024;
    const auto end = list.begin() + static_cast<std::ptrdiff_t>(count);
    std::vector<PageMemory> given(std::move_iterator(list.begin()), std::move_iterator(end));
    list.erase(list.begin(), end);
    std::size_t size = 0;
    for (const PageMemory &each : given)
        size += each.m_size;
    if (size < many)
        return;
    try {
        std::thread(giveBackSlowly, std::move(given)).detach();
    } catch (const std::system_error &) {
        // No thread is to be had: then they are given back here, by whoever holds them now.
        return;
    }
}

void PageMemory::giveBackSlowly(std::vector<PageMemory> given)
{
    constexpr std::size_t step = std::size_t{4} * 1024 * 1024;
    constexpr auto nap = std::chrono::microseconds(200);
    std::size_t sinceNap = 0;
    while (!given.empty()) {
        sinceNap += given.back().m_size;
        given.pop_back();
        if (sinceNap >= step) {
            // All threads of a process share one lock on its memory: without a gap the window's would hardly get it.
            std::this_thread::sleep_for(nap);
            sinceNap = 0;
        }
    }
}
