#pragma once

// A support folder, the history's file in it, and entries.

#include "HistoryStore/HistoryStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

class HistoryStoreTest : public testing::Test
{
protected:
    static HistoryEntry entryNumber(int number)
    {
        return {QUuid::createUuid(),
                QStringLiteral("command %1").arg(number),
                QStringLiteral("dev"),
                number,
                QString(),
                QDateTime(QDate(2026, 3, 1), QTime(14, 5, 9), QTimeZone::utc()),
                1.5};
    }

    QString supportFolder() const { return folder.path(); }
    QString storeFolder() const { return folder.filePath(QStringLiteral("Tidewell")); }
    QString filePath() const { return folder.filePath(QStringLiteral("Tidewell/history.json")); }

    void writeFile(const QByteArray &content)
    {
        ASSERT_TRUE(QDir().mkpath(storeFolder()));
        QFile file(filePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray fileContent() const { return contentOf(filePath()); }

    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    QStringList filesInFolder() const { return QDir(storeFolder()).entryList(QDir::Files | QDir::Hidden); }

    /// What a store that is created now would load.
    QList<HistoryEntry> reloaded() const { return HistoryStore(supportFolder()).entries(); }

    QTemporaryDir folder;
};
