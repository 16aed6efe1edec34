#include "TidewellApp/FirstInstance.h"

#include "HistoryStore/HistoryStorage.h"

#include <QFile>
#include <QSocketNotifier>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace
{

/// The end of a pipe; closed where something else has its name, which is left alone.
FileDescriptor openEnd(const QByteArray &path, int direction)
{
    FileDescriptor end(::open(path.constData(), direction | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (end.isOpen() && (::fstat(end.number(), &status) != 0 || !S_ISFIFO(status.st_mode)))
        end.close();
    return end;
}

} // namespace

FirstInstance::FirstInstance(const std::optional<QString> &folder)
{
    if (!folder)
        return;
    const QByteArray path = QFile::encodeName(*folder + u"/running"_s);
    // A pipe that nobody reads cannot be opened for writing without waiting.
    const FileDescriptor other = openEnd(path, O_WRONLY);
    const char notice = 0;
    if (other.isOpen() && ::write(other.number(), &notice, 1) == 1)
        m_isFirst = false;
    else
        listen(path);
}

void FirstInstance::listen(const QByteArray &path)
{
    HistoryStorage::makeFolder(QFile::decodeName(path).section(u'/', 0, -2));
    ::mkfifo(path.constData(), S_IRUSR | S_IWUSR);
    m_reading = openEnd(path, O_RDONLY);
    m_writing = openEnd(path, O_WRONLY);
    if (!m_reading.isOpen() || !m_writing.isOpen())
        return;
    auto *notifier = new QSocketNotifier(m_reading.number(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char notices[64];
        if (::read(m_reading.number(), notices, sizeof notices) > 0)
            Q_EMIT startedAgain();
    });
}
