#pragma once

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <vector>

/// Leaves this process room for exactly `count` more descriptors for as long as it lives.
class DescriptorRoom
{
public:
    explicit DescriptorRoom(int count)
    {
        // Children inherit the limit, and a shell wants descriptors from 10 on for itself.
        do
            m_fillers.push_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        while (m_fillers.back() >= 0 && m_fillers.back() < 20);
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit tight = m_before;
        tight.rlim_cur = 0;
        for (int free = 0; free < count || isOpen(static_cast<int>(tight.rlim_cur)); ++tight.rlim_cur)
            free += isOpen(static_cast<int>(tight.rlim_cur)) ? 0 : 1;
        ::setrlimit(RLIMIT_NOFILE, &tight);
    }
    ~DescriptorRoom()
    {
        ::setrlimit(RLIMIT_NOFILE, &m_before);
        for (const int filler : m_fillers)
            ::close(filler);
    }
    DescriptorRoom(const DescriptorRoom &) = delete;
    DescriptorRoom &operator=(const DescriptorRoom &) = delete;

private:
    static bool isOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }

    rlimit m_before = {};
    std::vector<int> m_fillers;
};
