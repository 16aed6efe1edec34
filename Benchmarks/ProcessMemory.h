#pragma once

// The memory that is this process's alone, as the system counts it: what would be free again without it. Nothing is
// given back for the measurement that the program itself keeps.

#ifdef __APPLE__
#include <mach/mach.h>
#else
#include <cstdio>
#include <fstream>
#include <string>
#endif

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
