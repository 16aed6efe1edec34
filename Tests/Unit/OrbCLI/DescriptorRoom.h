#pragma once

#include <fcntl.h>
#include <sys/resource.h>

/// Leaves this process room for exactly `count` more descriptors for as long as it lives.
class DescriptorRoom
{
public:
    explicit DescriptorRoom(int count)
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit tight = m_before;
        tight.rlim_cur = 0;
        for (int free = 0; free < count || isOpen(static_cast<int>(tight.rlim_cur)); ++tight.rlim_cur)
            free += isOpen(static_cast<int>(tight.rlim_cur)) ? 0 : 1;
        ::setrlimit(RLIMIT_NOFILE, &tight);
    }
    ~DescriptorRoom() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    DescriptorRoom(const DescriptorRoom &) = delete;
    DescriptorRoom &operator=(const DescriptorRoom &) = delete;

private:
    static bool isOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }

    rlimit m_before = {};
};
