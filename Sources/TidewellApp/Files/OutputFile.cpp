#include "TidewellApp/Files/OutputFile.h"

#include <QSaveFile>

#include <cerrno>
#include <future>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace
{

/// So many bytes are brought to the disk while more are written; all of them at the end would be waited for.
constexpr TextSnapshot::Position syncedAtOnce = TextSnapshot::Position{64} * 1024 * 1024;

/// The error number; 0 when all that was written is on the disk, or on what cannot tell.
int bringToDisk(int descriptor)
{
    return ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
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
        if (file.write(piece.bytes.data(), piece.bytes.size()) != piece.bytes.size())
            return failure(file.errorString());
        at = piece.end;
        progress.done = at - text.begin();
        if (at - synced < syncedAtOnce && at < text.end())
            continue;
        if (const int error = syncing.valid() ? syncing.get() : 0; error != 0)
            return failure(qt_error_string(error));
        syncing = std::async(std::launch::async | std::launch::deferred, bringToDisk, file.handle());
        synced = at;
    }
    // The file itself says nothing of an error that shows only now.
    if (const int error = syncing.valid() ? syncing.get() : 0; error != 0)
        return failure(qt_error_string(error));
    if (!file.commit())
        return failure(file.errorString());
    return std::nullopt;
}
