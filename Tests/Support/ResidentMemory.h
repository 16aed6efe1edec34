#pragma once

// How much memory of the machine this process takes at this moment.

#include <cstdint>

#ifdef __APPLE__
#include <mach/mach.h>
#else
#include <unistd.h>

#include <fstream>
#endif

/// In bytes; 0 when the system does not tell.
inline std::int64_t residentMemory()
{
#ifdef __APPLE__
    mach_task_basic_info information{};
    mach_msg_type_number_t count = MACH_TASK_BASIC_INFO_COUNT;
    if (task_info(mach_task_self(), MACH_TASK_BASIC_INFO, reinterpret_cast<task_info_t>(&information), &count) !=
        KERN_SUCCESS)
        return 0;
    return static_cast<std::int64_t>(information.resident_size);
#else
    std::int64_t all = 0;
    std::int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
#endif
}
