#pragma once

// The last 50 runs, newest first, kept in one JSON file that is rewritten whole, atomically, on every change. All on
// the main thread, synchronously. A missing or damaged file is an empty history. A write that fails leaves the file as
// it was and the list in memory intact, is told in `saveError`, and is tried again until it succeeds.
//
// Entries and deletions of another Tidewell that writes the same file are taken over with the next save.

#include "HistoryStore/HistoryEntry.h"
#include "HistoryStore/HistoryStorage.h"

#include <QList>
#include <QObject>
#include <QProperty>
#include <QTimer>

#include <chrono>
#include <optional>

class HistoryStore : public QObject
{
    Q_OBJECT

public:
    /// Creates the folder "Tidewell" in `supportFolder` and loads "history.json" from it. Without a support folder the
    /// history lives in memory only.
    explicit HistoryStore(const std::optional<QString> &supportFolder = applicationSupportFolder(),
                          std::chrono::milliseconds retryInterval = std::chrono::seconds(5), QObject *parent = nullptr);
    /// Tries once more to save what could not be saved.
    ~HistoryStore() override;

    const QList<HistoryEntry> &entries() const { return m_entries; }
    std::optional<QString> fileURL() const;
    /// Why the file does not hold the entries, in the system's words; none once it does.
    std::optional<QString> saveError() const { return m_saveError; }

    /// Puts the entry in front, keeps the newest 50, saves.
    void add(const HistoryEntry &entry);

    /// Removes every entry with the same id, saves. (`delete` is a word of the language.)
    void remove(const HistoryEntry &entry);

    /// Removes all entries, saves.
    void clear();

    /// Writes the entries to the file, which may bring others in; does nothing without one. Changes `entries` and
    /// `saveError`.
    void save();

    /// The current user's application-support directory, if the platform knows one.
    static std::optional<QString> applicationSupportFolder();

    /// Our folder in a support folder.
    static QString folderIn(const QString &supportFolder);

Q_SIGNALS:
    void entriesChanged();
    void saveErrorChanged();

private:
    /// Saves, then tells of the entries if they are others than those `before`.
    void saveAndTell(const QList<HistoryEntry> &before);

    QList<HistoryEntry> m_entries;
    std::optional<HistoryStorage> m_storage;
    QTimer m_retry;
    Q_OBJECT_BINDABLE_PROPERTY(HistoryStore, std::optional<QString>, m_saveError, &HistoryStore::saveErrorChanged)
};
