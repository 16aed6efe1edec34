#include "RunController/PageMemory.h"

#include <new>
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
