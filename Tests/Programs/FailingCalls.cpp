// Loaded before the system's own library (LD_PRELOAD), it makes one system call about files fail: of the calls that
// concern what lies below the folder FAIL_BELOW, the one with the number FAIL_CALL, with the error number FAIL_ERROR.
// Or it makes a file, UNREADABLE, fail with that number whenever it is opened for reading; with EIO, whenever it is
// read.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace
{

std::atomic<int> calls = 0;
std::atomic<bool> wasMade = false;
std::atomic<bool> concerned[1024];
std::atomic<bool> unreadable[1024];

template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

int errorNumber()
{
    const char *const number = std::getenv("FAIL_ERROR");
    return number == nullptr ? EIO : std::atoi(number);
}

bool fails()
{
    const char *number = std::getenv("FAIL_CALL");
    if (number == nullptr || ++calls != std::atoi(number))
        return false;
    wasMade = true;
    errno = errorNumber();
    return true;
}

bool isUnreadable(const char *path, int flags)
{
    const char *file = std::getenv("UNREADABLE");
    return file != nullptr && std::strcmp(path, file) == 0 && (flags & O_ACCMODE) == O_RDONLY;
}

bool isUnreadable(int descriptor)
{
    return descriptor >= 0 && descriptor < 1024 && unreadable[descriptor];
}

/// Fails a call that is to fail each time.
int failed()
{
    errno = errorNumber();
    return -1;
}

bool concerns(const char *path)
{
    const char *folder = std::getenv("FAIL_BELOW");
    return folder != nullptr && std::strncmp(path, folder, std::strlen(folder)) == 0;
}

bool concerns(int descriptor)
{
    return descriptor >= 0 && descriptor < 1024 && concerned[descriptor];
}

int noted(int descriptor, bool isConcerned, bool cannotBeRead = false)
{
    if (descriptor >= 0 && descriptor < 1024) {
        concerned[descriptor] = isConcerned;
        unreadable[descriptor] = cannotBeRead;
    }
    return descriptor;
}

mode_t modeOf(int flags, va_list arguments)
{
    const bool creates = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return creates ? va_arg(arguments, mode_t) : 0;
}

} // namespace

extern "C" {

bool failingCallWasMade()
{
    return wasMade;
}

#define OPEN(name)                                                                                                     \
    int name(const char *path, int flags, ...)                                                                         \
    {                                                                                                                  \
        va_list arguments;                                                                                             \
        va_start(arguments, flags);                                                                                    \
        const mode_t mode = modeOf(flags, arguments);                                                                  \
        va_end(arguments);                                                                                             \
        if (concerns(path) && fails())                                                                                 \
            return -1;                                                                                                 \
        const bool cannotBeRead = isUnreadable(path, flags);                                                           \
        if (cannotBeRead && errorNumber() != EIO)                                                                      \
            return failed();                                                                                           \
        return noted(next<int(const char *, int, ...)>(#name)(path, flags, mode), concerns(path), cannotBeRead);       \
    }
OPEN(open)
OPEN(open64)

int close(int descriptor)
{
    noted(descriptor, false);
    return next<int(int)>("close")(descriptor);
}

// NOLINTBEGIN(bugprone-macro-parentheses): the lists have theirs
#define ON_DESCRIPTOR(type, name, parameters, types, values)                                                           \
    type name parameters                                                                                               \
    {                                                                                                                  \
        return concerns(descriptor) && fails() ? -1 : next<type types>(#name) values;                                  \
    }
ON_DESCRIPTOR(ssize_t, write, (int descriptor, const void *data, size_t size), (int, const void *, size_t),
              (descriptor, data, size))

ssize_t read(int descriptor, void *data, size_t size)
{
    if (isUnreadable(descriptor))
        return failed();
    return concerns(descriptor) && fails() ? -1 : next<ssize_t(int, void *, size_t)>("read")(descriptor, data, size);
}

ON_DESCRIPTOR(int, fsync, (int descriptor), (int), (descriptor))
ON_DESCRIPTOR(int, fdatasync, (int descriptor), (int), (descriptor))
ON_DESCRIPTOR(int, fchmod, (int descriptor, mode_t mode) noexcept, (int, mode_t), (descriptor, mode))
ON_DESCRIPTOR(int, flock, (int descriptor, int operation) noexcept, (int, int), (descriptor, operation))

#define ON_PATH(name, parameters, types, values)                                                                       \
    int name parameters                                                                                                \
    {                                                                                                                  \
        return concerns(path) && fails() ? -1 : next<int types>(#name) values;                                         \
    }
ON_PATH(mkdir, (const char *path, mode_t mode) noexcept, (const char *, mode_t), (path, mode))
ON_PATH(unlink, (const char *path) noexcept, (const char *), (path))
ON_PATH(rename, (const char *path, const char *to) noexcept, (const char *, const char *), (path, to))
ON_PATH(link, (const char *path, const char *to) noexcept, (const char *, const char *), (path, to))
ON_PATH(chmod, (const char *path, mode_t mode) noexcept, (const char *, mode_t), (path, mode))
// NOLINTEND(bugprone-macro-parentheses)

int renameat2(int from, const char *path, int to, const char *target, unsigned flags) noexcept
{
    return concerns(path) && fails()
               ? -1
               : next<int(int, const char *, int, const char *, unsigned)>("renameat2")(from, path, to, target, flags);
}

int linkat(int from, const char *path, int to, const char *target, int flags) noexcept
{
    // What has no name yet is linked by its descriptor's place in /proc.
    return (concerns(path) || concerns(target)) && fails()
               ? -1
               : next<int(int, const char *, int, const char *, int)>("linkat")(from, path, to, target, flags);
}
}
