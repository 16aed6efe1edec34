#include "HistoryStore/HistoryFile.h"
#include "Unit/HistoryStore/HistoryStoreTest.h"

#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

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
        EXPECT_EQ(filesInFolder(), QStringList{u"history.json"_s}) << "reading changes nothing";
        EXPECT_EQ(fileContent(), content) << "reading changes nothing";
        store.add(entryNumber(2));
        EXPECT_EQ(reloaded(), store.entries());
        ASSERT_TRUE(QDir(storeFolder()).removeRecursively());
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

TEST_F(HistoryStoreTest, KeepsAScriptOfFiveMegabytes)
{
    HistoryStore store(supportFolder());
    HistoryEntry large = entryNumber(1);
    large.command = u"echo \u00e9 \"\\\n"_s.repeated(500'000);
    store.add(large);
    EXPECT_TRUE(reloaded() == store.entries());
}
