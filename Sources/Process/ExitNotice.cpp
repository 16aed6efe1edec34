#include "Process/ExitNotice.h"

#ifdef __linux__

#include <sys/syscall.h>

FileDescriptor openExitNotice(pid_t pid)
{
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
}

#else

#include <sys/event.h>

FileDescriptor openExitNotice(pid_t pid)
{
    FileDescriptor queue(::kqueue());
    struct kevent exit = {};
    EV_SET(&exit, static_cast<uintptr_t>(pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    if (queue.isOpen() && ::kevent(queue.number(), &exit, 1, nullptr, 0, nullptr) != 0)
        queue.close();
    return queue;
}

#endif
