#include "Transcript/NamelessFile.h"

#include "Transcript/TextStorage.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#ifdef __APPLE__
#include <QDir>
#endif

namespace
{

int openNameless(const std::string &folder)
{
#ifdef O_TMPFILE
    const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != ENOENT))
        return descriptor;
#endif
    // Where the system or the disk knows no such files: for a moment it has a name, and nothing in it yet.
    std::string name = folder + "/tidewell-XXXXXX";
    const int named = ::mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0)
        ::unlink(name.c_str());
    return named;
}

} // namespace

std::string TextStorage::temporaryFolder()
{
#ifdef __APPLE__
    // The user's own, on the disk of the user's files.
    return QDir::tempPath().toStdString();
#else
    // /tmp is often in memory.
    return "/var/tmp";
#endif
}

std::shared_ptr<NamelessFile> NamelessFile::open(const std::string &folder)
{
    const int descriptor = openNameless(folder);
    return descriptor < 0 ? nullptr : std::shared_ptr<NamelessFile>(new NamelessFile(descriptor));
}

NamelessFile::~NamelessFile()
{
    ::close(m_descriptor);
}

bool NamelessFile::mayGrow(std::int64_t size, std::int64_t reserve, double reserveShare) const
{
    // Past its limit the system would end this process.
    rlimit limit{};
    if (::getrlimit(RLIMIT_FSIZE, &limit) != 0 || static_cast<rlim_t>(size) > limit.rlim_cur)
        return false;
    struct statvfs disk{};
    if (::fstatvfs(m_descriptor, &disk) != 0)
        return false;
    const auto unit = static_cast<double>(disk.f_frsize);
    const double left =
        std::max(static_cast<double>(reserve), reserveShare * unit * static_cast<double>(disk.f_blocks));
    const ::off_t grown = size - ::lseek(m_descriptor, 0, SEEK_END);
    return unit * static_cast<double>(disk.f_bavail) - static_cast<double>(grown) >= left;
}

int NamelessFile::write(std::int64_t place, QByteArrayView bytes) const
{
    while (!bytes.isEmpty()) {
        const ssize_t written = ::pwrite(m_descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()), place);
        if (written < 0 && errno != EINTR)
            return errno;
        if (written == 0)
            return EIO;
        if (written > 0) {
            bytes = bytes.sliced(written);
            place += written;
        }
    }
    return 0;
}

bool NamelessFile::isOutOfRoom(int error)
{
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

bool NamelessFile::read(std::int64_t place, char *bytes, std::size_t size) const
{
    while (size > 0) {
        const ssize_t taken = ::pread(m_descriptor, bytes, size, place);
        if (taken == 0 || (taken < 0 && errno != EINTR))
            return false;
        if (taken > 0) {
            bytes += taken;
            place += taken;
            size -= static_cast<std::size_t>(taken);
        }
    }
    return true;
}
