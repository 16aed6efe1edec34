#pragma once

// The last 50 runs, newest first, kept in one JSON file that is rewritten whole, atomically, on every change. All on
// the main thread, synchronously. No operation reports an error: a missing or damaged file is an empty history, and a
// write that fails leaves the file as it was and the list in memory intact.

#include "HistoryStore/HistoryEntry.h"

#include <QList>
#include <QObject>

#include <optional>

class HistoryStore : public QObject
{
    Q_OBJECT

public:
    /// Creates the folder "Tidewell" in `supportFolder` and loads "history.json" from it. Without a support folder the
    /// history lives in memory only.
    explicit HistoryStore(const std::optional<QString> &supportFolder = applicationSupportFolder(),
                          QObject *parent = nullptr);

    const QList<HistoryEntry> &entries() const { return m_entries; }
    std::optional<QString> fileURL() const { return m_fileURL; }

    /// Puts the entry in front, keeps the newest 50, saves.
    void add(const HistoryEntry &entry);

    /// Removes every entry with the same id, saves. (`delete` is a word of the language.)
    void remove(const HistoryEntry &entry);

    /// Removes all entries, saves.
    void clear();

    /// Writes the entries to the file; does nothing without one.
    void save() const;

    /// The current user's application-support directory, if the platform knows one.
    static std::optional<QString> applicationSupportFolder();

Q_SIGNALS:
    void entriesChanged();

private:
    QList<HistoryEntry> m_entries;
    std::optional<QString> m_fileURL;
};
