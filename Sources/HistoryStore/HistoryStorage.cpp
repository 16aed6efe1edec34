#include "HistoryStore/HistoryStorage.h"

#include "HistoryStore/HistoryFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QThread>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace
{

constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

/// Keeps other instances from writing into a folder. It is the folder that is locked, so nothing is left behind, and
/// the system releases the lock however its owner ends.
class FolderLock
{
public:
    /// Waits for another owner, but not for long.
    explicit FolderLock(const QString &folder)
        : m_descriptor(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        for (int tries = 0; tries < mostTries; ++tries) {
            // Where no lock can be made at all, writing will tell why, or do without.
            m_isTaken = ::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
            if (!m_isTaken)
                return;
            QThread::msleep(between.count());
        }
    }
    ~FolderLock()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

    /// Another instance had it for all that time.
    bool isTaken() const { return m_isTaken; }

private:
    static constexpr int mostTries = 100;
    static constexpr std::chrono::milliseconds between{10};

    const int m_descriptor;
    bool m_isTaken = false;
};

/// Where a chain of links ends, be there a file or not.
QString targetOf(const QString &path)
{
    constexpr int mostLinks = 40;
    QFileInfo file(path);
    for (int links = 0; file.isSymLink() && links < mostLinks; ++links)
        file.setFile(file.symLinkTarget());
    return file.filePath();
}

/// What stands at a path. Where nothing does, none of these.
struct Reading {
    std::optional<QByteArray> content = std::nullopt;
    /// A file that cannot be read, or is too large to be a history.
    bool isUseless = false;
    /// Why there is no telling what it is, or that it is no file.
    std::optional<QString> error = std::nullopt;
};

Reading read(const QString &path)
{
    // Without waiting: a pipe of that name would hold up the start for ever.
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        const int error = errno;
        if (error == ENOENT)
            return {};
        // Where there is no descriptor left, nothing is wrong with the file.
        if (error != EMFILE && error != ENFILE && QFileInfo(path).isFile())
            return {.isUseless = true};
        return {.error = qt_error_string(error)};
    }
    struct stat status = {};
    QFile file;
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return {.error = u"what has its name is not a file"_s};
    }
    QByteArray content = file.read(HistoryFile::largestSize + 1);
    if (file.error() != QFileDevice::NoError || content.size() > HistoryFile::largestSize)
        return {.isUseless = true};
    return {.content = std::move(content)};
}

/// Once more where it cannot be read: an error of the disk or the network may be over with the next try.
Reading readPatiently(const QString &path)
{
    Reading reading = read(path);
    return reading.isUseless ? read(path) : reading;
}

std::optional<QString> setAside(const QString &path)
{
    const QString name = path + u".damaged-"_s + QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd-hhmmss"_s);
    QString free = name;
    for (int number = 2; QFileInfo::exists(free); ++number)
        free = name + u'-' + QString::number(number);
    QFile file(path);
    return file.rename(free) ? std::nullopt : std::optional(file.errorString());
}

std::optional<QString> replace(const QString &path, QByteArrayView content)
{
    const bool isNew = !QFileInfo::exists(path);
    QSaveFile file(path);
    // Unbuffered, because a disk that fills in the middle is told by a short count alone, and only to the write itself.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || (isNew && !file.setPermissions(ownerOnly)))
        return file.errorString();
    while (!content.isEmpty()) {
        const qint64 written = file.write(content.data(), content.size());
        if (written <= 0)
            return file.errorString();
        content = content.sliced(written);
    }
    return file.commit() ? std::nullopt : std::optional(file.errorString());
}

} // namespace

HistoryStorage::HistoryStorage(const QString &folder) : m_folder(folder), m_path(folder + u"/history.json"_s)
{
    makeFolder(m_folder);
}

void HistoryStorage::makeFolder(const QString &folder)
{
    QDir().mkpath(QFileInfo(folder).path());
    QDir().mkdir(folder, ownerOnly | QFile::ExeOwner);
}

QList<HistoryEntry> HistoryStorage::load()
{
    const std::optional<QByteArray> content = read(m_path).content;
    const std::optional<QList<HistoryEntry>> entries = content ? HistoryFile::decode(*content) : std::nullopt;
    if (!entries)
        return {};
    m_known = *content;
    return *entries;
}

std::optional<QString> HistoryStorage::save(QList<HistoryEntry> &entries)
{
    makeFolder(m_folder);
    const QString target = targetOf(m_path);
    const FolderLock lock(QFileInfo(target).path());
    if (lock.isTaken())
        return u"another Tidewell is writing it"_s;

    const Reading found = readPatiently(target);
    if (found.error)
        return found.error;
    if (found.isUseless || (found.content && *found.content != m_known)) {
        const std::optional<QList<HistoryEntry>> theirs =
            found.isUseless ? std::nullopt : HistoryFile::decode(*found.content);
        if (theirs) {
            entries =
                HistoryFile::merged(entries, HistoryFile::decode(m_known).value_or(QList<HistoryEntry>()), *theirs);
            // Also when the writing fails: a deletion after this is one of an entry that was known.
            m_known = *found.content;
        } else if (const std::optional<QString> failure = setAside(target)) {
            return failure;
        }
    }
    QByteArray content = HistoryFile::encode(entries);
    if (std::optional<QString> failure = replace(target, content))
        return failure;
    m_known = std::move(content);
    return std::nullopt;
}
