#include "Transcript/NamelessFile.h"

#include "Support/Mebibyte.h"
#include "Support/Seed.h"
#include "Unit/Transcript/FileSizeLimit.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <random>

namespace
{

QStringList filesIn(const QTemporaryDir &folder)
{
    return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

} // namespace

TEST(NamelessFile, KeepsWhatIsWrittenAtItsPlaceAndHasNoName)
{
    const QTemporaryDir folder;
    const std::shared_ptr<NamelessFile> file = NamelessFile::open(folder.path().toStdString());
    ASSERT_TRUE(file);
    EXPECT_EQ(filesIn(folder), QStringList());
    EXPECT_EQ(file->write(3 * mebibyte, "later"), 0);
    EXPECT_EQ(file->write(0, "first"), 0);
    std::string read(5, '\0');
    EXPECT_TRUE(file->read(3 * mebibyte, read.data(), read.size()));
    EXPECT_EQ(read, "later");
    EXPECT_TRUE(file->read(0, read.data(), read.size()));
    EXPECT_EQ(read, "first");
    EXPECT_FALSE(file->read(3 * mebibyte + 1, read.data(), read.size())) << "there are four bytes";
}

TEST(NamelessFile, IsNotToBeHadInAFolderThatIsMissingOrNone)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(NamelessFile::open(folder.path().toStdString() + "/missing"));
    QFile file(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_FALSE(NamelessFile::open(file.fileName().toStdString()));
}

TEST(NamelessFile, IsNotToBeHadInAFolderThatIsReadOnly)
{
    const QTemporaryDir folder;
    QFile::setPermissions(folder.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    if (::access(folder.path().toLocal8Bit().constData(), W_OK) == 0)
        GTEST_SKIP() << "This user may write everywhere.";
    EXPECT_FALSE(NamelessFile::open(folder.path().toStdString()));
}

TEST(NamelessFile, LeavesSoMuchOfTheDiskFree)
{
    const QTemporaryDir folder;
    const std::shared_ptr<NamelessFile> file = NamelessFile::open(folder.path().toStdString());
    constexpr std::int64_t tooMuch = std::int64_t{1} << 60;
    EXPECT_TRUE(file->mayGrow(mebibyte, 0, 0));
    EXPECT_FALSE(file->mayGrow(tooMuch, 0, 0));
    EXPECT_FALSE(file->mayGrow(mebibyte, tooMuch, 0));
    EXPECT_FALSE(file->mayGrow(mebibyte, 0, 1));
}

TEST(NamelessFile, TakesOfTheDiskOnlyWhatItGrowsBy)
{
    const QTemporaryDir folder;
    const std::shared_ptr<NamelessFile> file = NamelessFile::open(folder.path().toStdString());
    constexpr std::int64_t end = std::int64_t{1} << 42; // more than a disk has free; there is a hole before it
    ASSERT_FALSE(file->mayGrow(end + mebibyte, 0, 0));
    ASSERT_EQ(file->write(end - 1, "x"), 0);
    EXPECT_TRUE(file->mayGrow(end + mebibyte, 0, 0));
    EXPECT_FALSE(file->mayGrow(2 * end, 0, 0));
}

TEST(NamelessFile, KnowsWhichErrorsTellThatThereIsNoRoom)
{
    for (const int error : {ENOSPC, EDQUOT, EFBIG})
        EXPECT_TRUE(NamelessFile::isOutOfRoom(error)) << error;
    for (const int error : {0, EIO, ENOENT, EBADF})
        EXPECT_FALSE(NamelessFile::isOutOfRoom(error)) << error;
}

TEST(NamelessFile, DoesNotGrowPastTheLimitForFilesAtWhichTheSystemEndsAProcess)
{
    const QTemporaryDir folder;
    const std::shared_ptr<NamelessFile> file = NamelessFile::open(folder.path().toStdString());
    const FileSizeLimit limit(2 * mebibyte);
    EXPECT_TRUE(file->mayGrow(2 * mebibyte, 0, 0));
    EXPECT_FALSE(file->mayGrow(2 * mebibyte + 1, 0, 0));
    const auto former = std::signal(SIGXFSZ, SIG_IGN);
    EXPECT_EQ(file->write(2 * mebibyte, "x"), EFBIG) << "and not for ever";
    std::signal(SIGXFSZ, former);
}

TEST(NamelessFile, IsGoneWheneverItsProcessIsKilled)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "The thread sanitizer does not follow a fork.";
#endif
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    const std::string bytes(64 * 1024, 'x');
    std::mt19937 random(seedOr(3));
    for (int round = 0; round < 50; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (;;) {
                const std::shared_ptr<NamelessFile> file = NamelessFile::open(path);
                file->write(0, {bytes.data(), static_cast<qsizetype>(bytes.size())});
            }
        }
        ASSERT_GT(child, 0);
        ::usleep(std::uniform_int_distribution<useconds_t>(0, 3000)(random));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ASSERT_EQ(filesIn(folder), QStringList());
    }
}
