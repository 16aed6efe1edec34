#include "HistoryStore/HistoryStore.h"

#include "HistoryStore/HistoryFile.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

HistoryStore::HistoryStore(const std::optional<QString> &supportFolder, std::chrono::milliseconds retryInterval,
                           QObject *parent)
    : QObject(parent)
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(retryInterval);
    connect(&m_retry, &QTimer::timeout, this, &HistoryStore::save);
    if (!supportFolder)
        return;
    m_storage.emplace(folderIn(*supportFolder));
    m_entries = m_storage->load();
}

HistoryStore::~HistoryStore()
{
    if (m_saveError.value() && m_storage)
        m_storage->save(m_entries);
}

std::optional<QString> HistoryStore::fileURL() const
{
    return m_storage ? std::optional(m_storage->path()) : std::nullopt;
}

void HistoryStore::add(const HistoryEntry &entry)
{
    const QList<HistoryEntry> before = m_entries;
    m_entries.prepend(entry);
    if (m_entries.size() > HistoryFile::mostEntries)
        m_entries.resize(HistoryFile::mostEntries);
    saveAndTell(before);
}

void HistoryStore::remove(const HistoryEntry &entry)
{
    // A copy, because the caller's entry may be the very element that goes.
    const QUuid id = entry.id;
    const QList<HistoryEntry> before = m_entries;
    m_entries.removeIf([id](const HistoryEntry &other) { return other.id == id; });
    saveAndTell(before);
}

void HistoryStore::clear()
{
    const QList<HistoryEntry> before = m_entries;
    m_entries.clear();
    saveAndTell(before);
}

void HistoryStore::save()
{
    const QList<HistoryEntry> before = m_entries;
    saveAndTell(before);
}

void HistoryStore::saveAndTell(const QList<HistoryEntry> &before)
{
    if (m_storage) {
        m_saveError = m_storage->save(m_entries);
        if (m_saveError.value())
            m_retry.start();
        else
            m_retry.stop();
    }
    if (m_entries != before)
        Q_EMIT entriesChanged();
}

std::optional<QString> HistoryStore::applicationSupportFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return folder.isEmpty() ? std::nullopt : std::optional(folder);
}

QString HistoryStore::folderIn(const QString &supportFolder)
{
    return supportFolder + u"/Tidewell"_s;
}
