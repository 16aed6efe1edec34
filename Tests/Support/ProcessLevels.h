#pragma once

// What this process holds of the system at this moment, beside memory (ProcessMemory.h).

#include <sys/wait.h>

#include <cerrno>
#include <filesystem>
#ifdef __APPLE__
#include <mach/mach.h>
#endif

namespace ProcessLevels
{

/// Whether there is no child left that lives or that nobody has waited for.
inline bool hasNoChild()
{
    siginfo_t information = {};
    return ::waitid(P_ALL, 0, &information, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
}

/// Open descriptors, with the one that looks.
inline long descriptors()
{
    return std::distance(std::filesystem::directory_iterator("/dev/fd"), {});
}

inline long threads()
{
#ifdef __APPLE__
    thread_act_array_t list = nullptr;
    mach_msg_type_number_t count = 0;
    if (task_threads(mach_task_self(), &list, &count) != KERN_SUCCESS)
        return -1;
    vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(list), count * sizeof(*list));
    return static_cast<long>(count);
#else
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
#endif
}

} // namespace ProcessLevels
