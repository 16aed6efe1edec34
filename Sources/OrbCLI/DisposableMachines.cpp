#include "OrbCLI/DisposableMachines.h"

#include "Text/WholePattern.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace
{

/// Of no other name a file is touched, wherever the name comes from.
bool isName(const QString &text)
{
    static const WholePattern form(u"sbx-[0-9a-f]{6}"_s);
    return form.matches(text);
}

} // namespace

DisposableMachines::DisposableMachines(const std::optional<QString> &supportFolder)
{
    if (supportFolder)
        m_folder = *supportFolder + u"/Tidewell/Disposable machines"_s;
}

FileDescriptor DisposableMachines::writeDown(const QString &name) const
{
    if (!m_folder || !isName(name) || !QDir().mkpath(*m_folder))
        return {};
    const QByteArray folder = QFile::encodeName(*m_folder);
    const QByteArray path = folder + '/' + QFile::encodeName(name);
    // Locked before it has its name, by which other programs look.
    const QByteArray unnamed = folder + "/." + QFile::encodeName(name);
    FileDescriptor file(::open(unnamed.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!file.isOpen() || ::flock(file.number(), LOCK_EX | LOCK_NB) != 0 ||
        std::rename(unnamed.constData(), path.constData()) != 0)
        return {};
    const FileDescriptor directory(::open(folder.constData(), O_RDONLY | O_CLOEXEC));
    if (directory.isOpen())
        ::fsync(directory.number());
    return file;
}

void DisposableMachines::strikeOut(const QString &name) const
{
    if (m_folder && isName(name))
        QFile::remove(*m_folder + u'/' + name);
}

QStringList DisposableMachines::names() const
{
    QStringList names;
    if (m_folder)
        names = QDir(*m_folder).entryList(QDir::Files, QDir::Name);
    names.removeIf([](const QString &name) { return !isName(name); });
    return names;
}

QList<DisposableMachines::LeftBehind> DisposableMachines::leftBehind() const
{
    QList<LeftBehind> found;
    for (const QString &name : names()) {
        const QFileInfo file(*m_folder, name);
        // Shared, so that of two programs that look at once neither takes the other for the run.
        const FileDescriptor opened(::open(QFile::encodeName(file.filePath()).constData(), O_RDONLY | O_CLOEXEC));
        if (opened.isOpen() && ::flock(opened.number(), LOCK_SH | LOCK_NB) == 0)
            found.append({name, file.lastModified()});
    }
    return found;
}
