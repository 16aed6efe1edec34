#include "HistoryStore/HistoryStore.h"

#include "HistoryStore/HistoryFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace
{

HistoryEntry entryNumber(int number)
{
    return {QUuid::createUuid(),
            u"command %1"_s.arg(number),
            u"dev"_s,
            number,
            QString(),
            QDateTime(QDate(2026, 3, 1), QTime(14, 5, 9), QTimeZone::utc()),
            1.5};
}

class HistoryStoreTest : public testing::Test
{
protected:
    QString supportFolder() const { return folder.path(); }
    QString filePath() const { return folder.filePath(u"Tidewell/history.json"_s); }

    void writeFile(const QByteArray &content)
    {
        ASSERT_TRUE(QDir().mkpath(folder.filePath(u"Tidewell"_s)));
        QFile file(filePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray fileContent() const
    {
        QFile file(filePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    /// What a store that is created now would load.
    QList<HistoryEntry> reloaded() const { return HistoryStore(supportFolder()).entries(); }

    QTemporaryDir folder;
};

} // namespace

TEST_F(HistoryStoreTest, StartsEmptyAndMakesItsFolderButNoFile)
{
    const QString deep = folder.filePath(u"not/there/yet"_s);
    const HistoryStore store(deep);
    EXPECT_TRUE(store.entries().isEmpty());
    EXPECT_EQ(store.fileURL(), deep + u"/Tidewell/history.json"_s);
    EXPECT_TRUE(QFileInfo(deep + u"/Tidewell"_s).isDir());
    EXPECT_FALSE(QFile::exists(*store.fileURL()));
}

TEST_F(HistoryStoreTest, KeepsRunsAcrossRestarts)
{
    const HistoryEntry first = entryNumber(1);
    const HistoryEntry second = entryNumber(2);
    HistoryStore store(supportFolder());
    store.add(first);
    EXPECT_EQ(reloaded(), QList{first});
    store.add(second);
    EXPECT_EQ(store.entries(), QList({second, first}));
    EXPECT_EQ(reloaded(), QList({second, first}));
    EXPECT_EQ(fileContent(), HistoryFile::encode({second, first}));
}

TEST_F(HistoryStoreTest, KeepsTheNewest50)
{
    HistoryStore store(supportFolder());
    for (int number = 1; number <= 51; ++number)
        store.add(entryNumber(number));
    ASSERT_EQ(store.entries().size(), 50);
    EXPECT_EQ(store.entries().first().command, u"command 51"_s);
    EXPECT_EQ(store.entries().last().command, u"command 2"_s);
    EXPECT_EQ(reloaded(), store.entries());
}

TEST_F(HistoryStoreTest, TakesALongerFileAsItIsUntilTheNextRun)
{
    QList<HistoryEntry> many;
    for (int number = 1; number <= 60; ++number)
        many.append(entryNumber(number));
    writeFile(HistoryFile::encode(many));
    HistoryStore store(supportFolder());
    EXPECT_EQ(store.entries(), many);
    store.add(entryNumber(0));
    EXPECT_EQ(store.entries().size(), 50);
    EXPECT_EQ(store.entries().mid(1), many.first(49));
}

TEST_F(HistoryStoreTest, LosesTheFractionOfADateInTheFileOnly)
{
    HistoryEntry entry = entryNumber(1);
    entry.date = entry.date.addMSecs(250);
    HistoryStore store(supportFolder());
    store.add(entry);
    EXPECT_EQ(store.entries(), QList{entry});
    ASSERT_EQ(reloaded().size(), 1);
    EXPECT_NE(reloaded().first(), entry);
    EXPECT_EQ(reloaded().first().date, entry.date.addMSecs(-250));
}

TEST_F(HistoryStoreTest, DeletesByIdAndRewritesTheFile)
{
    HistoryStore store(supportFolder());
    const HistoryEntry kept = entryNumber(1);
    HistoryEntry twice = entryNumber(2);
    store.add(twice);
    store.add(kept);
    twice.command = u"another text, the same run"_s;
    store.add(twice);
    store.remove(store.entries().first());
    EXPECT_EQ(store.entries(), QList{kept});
    EXPECT_EQ(reloaded(), QList{kept});
}

TEST_F(HistoryStoreTest, RewritesTheFileUnchangedWhenTheEntryIsGone)
{
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    const QByteArray before = fileContent();
    ASSERT_TRUE(QFile::remove(filePath()));
    int changes = 0;
    QObject::connect(&store, &HistoryStore::entriesChanged, &store, [&] { ++changes; });
    store.remove(entryNumber(1));
    EXPECT_EQ(fileContent(), before);
    EXPECT_EQ(changes, 0);
}

TEST_F(HistoryStoreTest, ClearsEverything)
{
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    store.clear();
    EXPECT_TRUE(store.entries().isEmpty());
    EXPECT_EQ(fileContent(), "[]");
}

TEST_F(HistoryStoreTest, TellsOfEveryChangeAfterItIsOnDisk)
{
    HistoryStore store(supportFolder());
    int changes = 0;
    QObject::connect(&store, &HistoryStore::entriesChanged, &store, [&] {
        ++changes;
        EXPECT_EQ(reloaded(), store.entries());
    });
    store.add(entryNumber(1));
    store.add(entryNumber(2));
    store.remove(store.entries().last());
    store.clear();
    store.clear();
    EXPECT_EQ(changes, 4);
}

TEST_F(HistoryStoreTest, LivesInMemoryWithoutASupportFolder)
{
    HistoryStore store(std::nullopt);
    EXPECT_EQ(store.fileURL(), std::nullopt);
    store.add(entryNumber(1));
    store.add(entryNumber(2));
    store.remove(store.entries().first());
    EXPECT_EQ(store.entries().size(), 1);
    store.save();
    store.clear();
    EXPECT_TRUE(store.entries().isEmpty());
}

TEST_F(HistoryStoreTest, KnowsTheUsersSupportFolder)
{
    const std::optional<QString> known = HistoryStore::applicationSupportFolder();
    ASSERT_TRUE(known.has_value());
    EXPECT_TRUE(QDir::isAbsolutePath(*known));
#ifdef Q_OS_MACOS
    EXPECT_TRUE(known->endsWith(u"/Library/Application Support"_s));
#endif
}

TEST_F(HistoryStoreTest, IsEmptyForADamagedFileAndReplacesItAtTheNextRun)
{
    const QByteArray good = HistoryFile::encode({entryNumber(1)});
    for (const QByteArray &content : {QByteArray(), QByteArray("{}"), good.chopped(1), QByteArray("[1]"),
                                      QByteArray(good).replace(",\"note\":\"\"", ""), good + good}) {
        writeFile(content);
        HistoryStore store(supportFolder());
        EXPECT_TRUE(store.entries().isEmpty()) << content.toStdString();
        EXPECT_EQ(fileContent(), content) << "reading changes nothing";
        store.add(entryNumber(2));
        EXPECT_EQ(reloaded(), store.entries());
    }
}

TEST_F(HistoryStoreTest, IsEmptyWhenTheFileIsNoFile)
{
    ASSERT_TRUE(QDir().mkpath(filePath()));
    HistoryStore store(supportFolder());
    EXPECT_TRUE(store.entries().isEmpty());
    store.add(entryNumber(1));
    EXPECT_EQ(store.entries().size(), 1);
    EXPECT_TRUE(QFileInfo(filePath()).isDir());
}

TEST_F(HistoryStoreTest, DoesNotWaitForAPipeInPlaceOfTheFile)
{
    ASSERT_TRUE(QDir().mkpath(folder.filePath(u"Tidewell"_s)));
    ASSERT_EQ(mkfifo(QFile::encodeName(filePath()).constData(), 0600), 0);
    EXPECT_TRUE(HistoryStore(supportFolder()).entries().isEmpty());
}

TEST_F(HistoryStoreTest, IsEmptyWhenTheFolderCannotBeMade)
{
    QFile obstacle(folder.filePath(u"Tidewell"_s));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    HistoryStore store(supportFolder());
    EXPECT_TRUE(store.entries().isEmpty());
    store.add(entryNumber(1));
    EXPECT_EQ(store.entries().size(), 1);
    store.clear();
    EXPECT_TRUE(QFileInfo(obstacle).isFile());
}

TEST_F(HistoryStoreTest, KeepsTheListWhenTheFolderCannotBeWritten)
{
    HistoryStore store(u"/proc"_s);
    store.add(entryNumber(1));
    store.add(entryNumber(2));
    EXPECT_EQ(store.entries().size(), 2);
}

TEST_F(HistoryStoreTest, LeavesTheFileAsItWasWhenTheDiskIsFull)
{
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    const QByteArray before = fileContent();

    // A limit on the size of files stands for the full disk: a write stops in the middle. A small content is written
    // at another moment than a large one.
    rlimit unlimited{};
    getrlimit(RLIMIT_FSIZE, &unlimited);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    for (const qsizetype size : {1, 10'000, 100'000}) {
        HistoryEntry next = entryNumber(2);
        next.command = QString(size, u'x');
        const rlimit small{.rlim_cur = 64, .rlim_max = unlimited.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        store.add(next);
        setrlimit(RLIMIT_FSIZE, &unlimited);
        EXPECT_EQ(fileContent(), before) << size;
        EXPECT_EQ(store.entries().first(), next);
        EXPECT_EQ(QDir(folder.filePath(u"Tidewell"_s)).entryList(QDir::Files), QStringList{u"history.json"_s})
            << "nothing is left over";
    }
    std::signal(SIGXFSZ, previous);

    store.save();
    EXPECT_EQ(reloaded(), store.entries()) << "the next write has room again";
}

TEST_F(HistoryStoreTest, IsNeverSeenHalfWritten)
{
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    QFile reader(filePath());
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    const QByteArray before = fileContent();
    store.add(entryNumber(2));
    EXPECT_EQ(reader.readAll(), before) << "the old file stays whole for whoever reads it";
}

TEST_F(HistoryStoreTest, WritesThroughALinkToAFileElsewhere)
{
    ASSERT_TRUE(QDir().mkpath(folder.filePath(u"Tidewell"_s)));
    const QString elsewhere = folder.filePath(u"elsewhere.json"_s);
    ASSERT_TRUE(QFile(elsewhere).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::link(elsewhere, filePath()));
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    EXPECT_TRUE(QFileInfo(filePath()).isSymLink());
    EXPECT_EQ(reloaded(), store.entries());
}

TEST_F(HistoryStoreTest, KeepsAScriptOfFiveMegabytes)
{
    HistoryStore store(supportFolder());
    HistoryEntry large = entryNumber(1);
    large.command = u"echo \u00e9 \"\\\n"_s.repeated(500'000);
    store.add(large);
    EXPECT_TRUE(reloaded() == store.entries());
}
