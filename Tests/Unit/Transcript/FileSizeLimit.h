#pragma once

#include <sys/resource.h>

#include <cstdint>

/// Lets no file of this process grow past so many bytes for as long as it lives: a full disk that no other process
/// fills or empties.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(std::int64_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit lower = m_before;
        lower.rlim_cur = static_cast<rlim_t>(bytes);
        ::setrlimit(RLIMIT_FSIZE, &lower);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before = {};
};
