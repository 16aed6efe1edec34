#include "TidewellApp/Files/OutputFile.h"

#include "Process/FileDescriptor.h"

#include <QSaveFile>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

/// So many bytes are brought to the disk while more are written; all of them at the end would be waited for.
constexpr TextSnapshot::Position syncedAtOnce = TextSnapshot::Position{64} * 1024 * 1024;

/// The error number; 0 when all that was written is on the disk, or on what cannot tell.
int bringToDisk(int descriptor)
{
    int error = 0;
    do {
        error = ::fsync(descriptor) == 0 ? 0 : errno;
    } while (error == EINTR);
    return error == EINVAL || error == ENOTSUP ? 0 : error;
}

/// Begins to bring to the disk what was written. The disk may take its time: whoever does not wait for the answer
/// leaves this to itself, with a descriptor of its own.
std::future<int> startSyncing(int descriptor)
{
    FileDescriptor own(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
    const int error = own.isOpen() ? 0 : errno;
    const auto sync = std::make_shared<std::packaged_task<int()>>(
        [own = std::move(own), error] { return own.isOpen() ? bringToDisk(own.number()) : error; });
    std::future<int> syncing = sync->get_future();
    try {
        std::thread([sync] { (*sync)(); }).detach();
    } catch (const std::system_error &) {
        (*sync)(); // no thread is to be had now
    }
    return syncing;
}

/// The error number of what was begun, if anything was; 0 as well when the writing is cancelled meanwhile.
int finishSyncing(std::future<int> &syncing, const OutputFile::Progress &progress)
{
    constexpr std::chrono::milliseconds step(10);
    if (!syncing.valid())
        return 0;
    while (syncing.wait_for(step) != std::future_status::ready) {
        if (progress.isCancelled)
            return 0;
    }
    return syncing.get();
}

} // namespace

std::optional<QString> OutputFile::write(const QString &path, const TextSnapshot &text, Progress &progress)
{
    QSaveFile file(path);
    const auto failure = [](const QString &reason) { return u"It cannot be written: "_s + reason + u'.'; };
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return failure(file.errorString());
    std::future<int> syncing;
    TextSnapshot::Position synced = text.begin();
    for (TextSnapshot::Position at = text.begin(); at < text.end();) {
        const TextPiece piece = text.pieceAt(at);
        if (progress.isCancelled)
            return std::nullopt;
        // Where only a part has room, what is wrong is told by the next attempt.
        for (qsizetype written = 0; written < piece.bytes.size();) {
            const qint64 more = file.write(piece.bytes.data() + written, piece.bytes.size() - written);
            if (more <= 0)
                return failure(file.errorString());
            written += more;
        }
        at = piece.end;
        progress.done = at - text.begin();
        if (at - synced < syncedAtOnce && at < text.end())
            continue;
        if (const int error = finishSyncing(syncing, progress); error != 0)
            return failure(qt_error_string(error));
        if (progress.isCancelled)
            return std::nullopt;
        syncing = startSyncing(file.handle());
        synced = at;
    }
    // The file itself says nothing of an error that shows only now.
    if (const int error = finishSyncing(syncing, progress); error != 0)
        return failure(qt_error_string(error));
    if (progress.isCancelled)
        return std::nullopt;
    if (!file.commit())
        return failure(file.errorString());
    return std::nullopt;
}
