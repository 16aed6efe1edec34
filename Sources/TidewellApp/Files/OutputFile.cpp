#include "TidewellApp/Files/OutputFile.h"

#include <QSaveFile>

using namespace Qt::StringLiterals;

std::optional<QString> OutputFile::write(const QString &path, const TextSnapshot &text, Progress &progress)
{
    QSaveFile file(path);
    const auto failure = [&file] { return u"It cannot be written: "_s + file.errorString() + u'.'; };
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return failure();
    for (TextSnapshot::Position at = text.begin(); at < text.end();) {
        const TextPiece piece = text.pieceAt(at);
        if (progress.isCancelled)
            return std::nullopt;
        if (file.write(piece.bytes.data(), piece.bytes.size()) != piece.bytes.size())
            return failure();
        at = piece.end;
        progress.done = at - text.begin();
    }
    if (!file.commit())
        return failure();
    return std::nullopt;
}
