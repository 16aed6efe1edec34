#pragma once

// The history's file and who else may write it: another Tidewell over the same folder. Each save takes over what the
// other has changed meanwhile, so that neither undoes the other's entries or deletions. Main thread, synchronously.

#include "HistoryStore/HistoryEntry.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

class HistoryStorage
{
public:
    /// Makes the folder as makeFolder does. The file is "history.json" in it.
    explicit HistoryStorage(const QString &folder);

    /// Makes the folder where there is none, for its owner alone, with what is missing above it. A failure shows when
    /// something is put into it.
    static void makeFolder(const QString &folder);

    const QString &path() const { return m_path; }

    /// The entries in the file; none when it is missing, damaged or cannot be read. Changes nothing on the disk.
    QList<HistoryEntry> load();

    /// Brings what another instance has added to the file, or deleted from it, into `entries`, then replaces the file
    /// atomically. A file that is no history, or cannot be read, is renamed first
    /// ("history.json.damaged-20260301-140509"). A new file is for its owner alone; one that is there keeps its mode,
    /// and a link stays a link. Returns why it failed, in the system's words; then the file is as it was.
    std::optional<QString> save(QList<HistoryEntry> &entries);

private:
    const QString m_folder;
    const QString m_path;
    /// The file's content as it was last read or written here. What differs from it is another instance's doing.
    QByteArray m_known;
};
