#include "HistoryStore/HistoryStore.h"

#include "HistoryStore/HistoryFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype mostEntries = 50;

} // namespace

HistoryStore::HistoryStore(const std::optional<QString> &supportFolder, QObject *parent) : QObject(parent)
{
    if (!supportFolder)
        return;
    const QString folder = *supportFolder + u"/Tidewell"_s;
    QDir().mkpath(folder);
    m_fileURL = folder + u"/history.json"_s;

    // Only a plain file is opened: a pipe of that name would hold up the start for ever.
    QFile file(*m_fileURL);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return;
    const QByteArray content = file.readAll();
    if (file.error() == QFileDevice::NoError)
        m_entries = HistoryFile::decode(content).value_or(QList<HistoryEntry>());
}

void HistoryStore::add(const HistoryEntry &entry)
{
    m_entries.prepend(entry);
    if (m_entries.size() > mostEntries)
        m_entries.resize(mostEntries);
    save();
    Q_EMIT entriesChanged();
}

void HistoryStore::remove(const HistoryEntry &entry)
{
    // A copy, because the caller's entry may be the very element that goes.
    const QUuid id = entry.id;
    const qsizetype removed = m_entries.removeIf([id](const HistoryEntry &other) { return other.id == id; });
    save();
    if (removed > 0)
        Q_EMIT entriesChanged();
}

void HistoryStore::clear()
{
    const bool hadEntries = !m_entries.isEmpty();
    m_entries.clear();
    save();
    if (hadEntries)
        Q_EMIT entriesChanged();
}

void HistoryStore::save() const
{
    if (!m_fileURL)
        return;
    QSaveFile file(*m_fileURL);
    // Unbuffered, because a disk that fills in the middle is told by a short count alone, and only to the write itself.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return;
    const QByteArray content = HistoryFile::encode(m_entries);
    if (file.write(content) == content.size())
        file.commit();
}

std::optional<QString> HistoryStore::applicationSupportFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return folder.isEmpty() ? std::nullopt : std::optional(folder);
}
