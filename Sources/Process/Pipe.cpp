#include "Process/Pipe.h"

#include <fcntl.h>

#include <cerrno>

namespace
{

bool openEnds(int (&ends)[2])
{
#ifdef __linux__
    return ::pipe2(ends, O_CLOEXEC) == 0;
#else
    // A child started between the two steps does not inherit the ends either: see ChildProcess.
    if (::pipe(ends) != 0)
        return false;
    for (const int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    return true;
#endif
}

bool raiseAboveStandardStreams(FileDescriptor &end)
{
    constexpr int firstFree = 3;
    if (end.number() >= firstFree)
        return true;
    FileDescriptor raised(::fcntl(end.number(), F_DUPFD_CLOEXEC, firstFree));
    if (!raised.isOpen())
        return false;
    end = std::move(raised);
    return true;
}

} // namespace

std::optional<Pipe> openPipe()
{
    int ends[2] = {-1, -1};
    if (!openEnds(ends))
        return std::nullopt;
    std::optional<Pipe> pipe(Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])});
    if (!raiseAboveStandardStreams(pipe->readEnd) || !raiseAboveStandardStreams(pipe->writeEnd)) {
        const int error = errno;
        pipe.reset();
        errno = error;
    }
    return pipe;
}

void makeNonBlocking(const FileDescriptor &end)
{
    ::fcntl(end.number(), F_SETFL, ::fcntl(end.number(), F_GETFL) | O_NONBLOCK);
}

bool enlargePipe(const FileDescriptor &end, std::size_t size)
{
#ifdef __linux__
    return ::fcntl(end.number(), F_SETPIPE_SZ, static_cast<int>(size)) >= 0;
#else
    // macOS lets a pipe grow by itself and has no call for it.
    static_cast<void>(end);
    static_cast<void>(size);
    return false;
#endif
}
