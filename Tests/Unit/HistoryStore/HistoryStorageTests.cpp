#include "HistoryStore/HistoryFile.h"
#include "Support/Waiting.h"
#include "Unit/HistoryStore/HistoryStoreTest.h"
#include "Unit/Process/DescriptorRoom.h"

#include <QElapsedTimer>
#include <QFileInfo>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace
{

/// A damaged or failing disk, and another Tidewell over the same folder.
class HistoryStorageTest : public HistoryStoreTest
{
protected:
    mode_t modeOf(const QString &path) const
    {
        struct stat status = {};
        return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
};

} // namespace

TEST_F(HistoryStorageTest, FollowsNoRingOfLinks)
{
    HistoryStore store(supportFolder());
    ASSERT_TRUE(QFile::link(filePath(), storeFolder() + u"/other"_s));
    ASSERT_TRUE(QFile::link(storeFolder() + u"/other"_s, filePath()));
    store.add(entryNumber(1));
    EXPECT_TRUE(store.saveError().has_value());
    EXPECT_EQ(store.entries().size(), 1);
    EXPECT_TRUE(QFileInfo(filePath()).isSymLink());
}

TEST_F(HistoryStorageTest, LeavesAFileAloneThatItCannotReadForWantOfADescriptor)
{
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    const QByteArray before = fileContent();
    {
        const DescriptorRoom room(0);
        store.add(entryNumber(2));
    }
    EXPECT_EQ(store.saveError(), u"Too many open files"_s);
    EXPECT_EQ(filesInFolder(), QStringList{u"history.json"_s}) << "nothing is wrong with it";
    EXPECT_EQ(fileContent(), before);
    store.save();
    EXPECT_EQ(store.saveError(), std::nullopt);
    EXPECT_EQ(reloaded(), store.entries());
}

TEST_F(HistoryStorageTest, LosesNoRunOfTwoThatWriteTheSameFile)
{
    HistoryStore one(supportFolder());
    HistoryStore other(supportFolder());
    QSet<QUuid> ids;
    for (int number = 0; number < 10; ++number) {
        const HistoryEntry entry = entryNumber(number);
        (number % 3 == 0 ? one : other).add(entry);
        ids.insert(entry.id);
    }
    one.save();
    EXPECT_EQ(one.entries().size(), 10);
    QSet<QUuid> kept;
    for (const HistoryEntry &entry : reloaded())
        kept.insert(entry.id);
    EXPECT_EQ(kept, ids);
}

TEST_F(HistoryStorageTest, LetsNoDeletedRunComeBackFromTheOther)
{
    HistoryStore one(supportFolder());
    for (int number = 0; number < 3; ++number)
        one.add(entryNumber(number));
    HistoryStore other(supportFolder());
    one.remove(one.entries().at(1));
    int changes = 0;
    QObject::connect(&other, &HistoryStore::entriesChanged, &other, [&] { ++changes; });
    other.add(entryNumber(3));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(other.entries().size(), 3);
    one.clear();
    EXPECT_EQ(one.entries(), QList{other.entries().first()}) << "a run that nobody saw here was not cleared";
    one.clear();
    other.save();
    EXPECT_TRUE(other.entries().isEmpty());
    EXPECT_EQ(fileContent(), "[]");
}

TEST_F(HistoryStorageTest, WaitsForTheOtherOnlyForAMomentAndTriesAgain)
{
    HistoryStore store(supportFolder(), std::chrono::milliseconds(10));
    const int other = ::open(QFile::encodeName(storeFolder()).constData(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    QElapsedTimer moment;
    moment.start();
    store.add(entryNumber(1));
    EXPECT_GE(moment.elapsed(), 1000) << "the other may be done within it";
    EXPECT_EQ(store.saveError(), u"another Tidewell is writing it"_s);
    ::close(other);
    EXPECT_TRUE(waitUntil([&] { return !store.saveError(); }));
    EXPECT_EQ(reloaded(), store.entries());
}

TEST_F(HistoryStorageTest, TellsWhyAndSavesAsSoonAsThatIsPossible)
{
    HistoryStore store(supportFolder(), std::chrono::milliseconds(10));
    ASSERT_TRUE(QDir().rmdir(storeFolder()));
    QFile obstacle(storeFolder());
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    int changes = 0;
    QObject::connect(&store, &HistoryStore::saveErrorChanged, &store, [&] { ++changes; });
    store.add(entryNumber(1));
    store.add(entryNumber(2));
    EXPECT_EQ(store.saveError(), u"Not a directory"_s);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(store.entries().size(), 2);
    ASSERT_TRUE(obstacle.remove());
    EXPECT_TRUE(waitUntil([&] { return !store.saveError(); }));
    EXPECT_EQ(reloaded(), store.entries());
    EXPECT_EQ(changes, 2);
}

TEST_F(HistoryStorageTest, SavesAtTheEndWhatCouldNotBeSavedBefore)
{
    const HistoryEntry entry = entryNumber(1);
    {
        HistoryStore store(supportFolder());
        ASSERT_TRUE(QDir().rmdir(storeFolder()));
        QFile obstacle(storeFolder());
        ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
        store.add(entry);
        ASSERT_TRUE(obstacle.remove());
    }
    EXPECT_EQ(reloaded(), QList{entry});
}

TEST_F(HistoryStorageTest, MakesAFolderAgainThatWasRemovedMeanwhile)
{
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    ASSERT_TRUE(QDir(storeFolder()).removeRecursively());
    store.add(entryNumber(2));
    EXPECT_EQ(store.saveError(), std::nullopt);
    EXPECT_EQ(reloaded(), store.entries());
    EXPECT_EQ(store.entries().size(), 2);
}

TEST_F(HistoryStorageTest, KeepsANewFileAndFolderFromOthersAndTheModeOfOldOnes)
{
    const mode_t mask = ::umask(0);
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    ::umask(mask);
    EXPECT_EQ(modeOf(storeFolder()), 0700U);
    EXPECT_EQ(modeOf(filePath()), 0600U);
    ASSERT_EQ(::chmod(QFile::encodeName(filePath()).constData(), 0640), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(storeFolder()).constData(), 0755), 0);
    store.add(entryNumber(2));
    HistoryStore(supportFolder()).add(entryNumber(3));
    EXPECT_EQ(modeOf(storeFolder()), 0755U);
    EXPECT_EQ(modeOf(filePath()), 0640U);
}

TEST_F(HistoryStorageTest, WritesThroughALinkToAFileElsewhere)
{
    ASSERT_TRUE(QDir().mkpath(folder.filePath(u"Tidewell"_s)));
    const QString elsewhere = folder.filePath(u"elsewhere.json"_s);
    ASSERT_TRUE(QFile(elsewhere).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::link(elsewhere, filePath()));
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    EXPECT_TRUE(QFileInfo(filePath()).isSymLink());
    EXPECT_EQ(reloaded(), store.entries());

    QFile damaged(elsewhere);
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate) && damaged.write("damaged") == 7);
    damaged.close();
    store.add(entryNumber(2));
    EXPECT_TRUE(QFileInfo(filePath()).isSymLink());
    EXPECT_EQ(reloaded(), store.entries());
    const QStringList aside = QDir(supportFolder()).entryList({u"elsewhere.json.damaged-*"_s});
    ASSERT_EQ(aside.size(), 1) << "beside the file, not beside the link";
    EXPECT_EQ(contentOf(folder.filePath(aside.first())), "damaged");
}

TEST_F(HistoryStorageTest, LeavesTheFileAsItWasWhenTheDiskIsFull)
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
        EXPECT_EQ(store.saveError(), u"File too large"_s);
        EXPECT_EQ(filesInFolder(), QStringList{u"history.json"_s}) << "nothing is left over";
    }
    std::signal(SIGXFSZ, previous);

    store.save();
    EXPECT_EQ(reloaded(), store.entries()) << "the next write has room again";
}
