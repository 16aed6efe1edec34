#pragma once

// How much of the machine's memory this process takes at this moment.

#include <cstdint>

#ifdef __APPLE__
#include <mach/mach.h>
#else
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#endif

/// What is this process's alone, as the system counts it: what would be free again without it. Nothing is given back
/// for the measurement that the program itself keeps. The larger it is, the longer it takes to count.
inline long privateKibibytes()
{
#ifdef __APPLE__
    task_vm_info_data_t info{};
    mach_msg_type_number_t size = TASK_VM_INFO_COUNT;
    if (task_info(mach_task_self(), TASK_VM_INFO, reinterpret_cast<task_info_t>(&info), &size) != KERN_SUCCESS)
        return -1;
    return static_cast<long>(info.phys_footprint / 1024);
#else
    long sum = 0;
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
        long kibibytes = 0;
        if (std::sscanf(line.c_str(), "Private_Clean: %ld kB", &kibibytes) == 1 ||
            std::sscanf(line.c_str(), "Private_Dirty: %ld kB", &kibibytes) == 1)
            sum += kibibytes;
    }
    return sum;
#endif
}

/// Bytes in memory, shared libraries included; quick to ask for. 0 when the system does not tell.
inline std::int64_t residentMemory()
{
#ifdef __APPLE__
    mach_task_basic_info info{};
    mach_msg_type_number_t size = MACH_TASK_BASIC_INFO_COUNT;
    if (task_info(mach_task_self(), MACH_TASK_BASIC_INFO, reinterpret_cast<task_info_t>(&info), &size) != KERN_SUCCESS)
        return 0;
    return static_cast<std::int64_t>(info.resident_size);
#else
    std::int64_t all = 0;
    std::int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
#endif
}

/// Bytes in memory that are this process's alone, as the system keeps count anyway; quick to ask for. 0 when the system
/// does not tell.
inline std::int64_t privateMemory()
{
#ifdef __APPLE__
    return std::int64_t{1024} * privateKibibytes();
#else
    std::int64_t all = 0;
    std::int64_t resident = 0;
    std::int64_t ofFiles = 0;
    std::ifstream("/proc/self/statm") >> all >> resident >> ofFiles;
    return (resident - ofFiles) * ::sysconf(_SC_PAGESIZE);
#endif
}
