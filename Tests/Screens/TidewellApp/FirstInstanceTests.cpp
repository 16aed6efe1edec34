#include "TidewellApp/FirstInstance.h"

#include "Support/Waiting.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace
{

class FirstInstanceTest : public testing::Test
{
protected:
    QString folder() const { return scratch.filePath(u"support/Tidewell"_s); }
    QByteArray pipe() const { return QFile::encodeName(folder() + u"/running"_s); }

    QTemporaryDir scratch;
};

} // namespace

TEST_F(FirstInstanceTest, HearsOfEveryLaterOne)
{
    const FirstInstance first(folder());
    EXPECT_TRUE(first.isFirst());
    QSignalSpy starts(&first, &FirstInstance::startedAgain);
    EXPECT_FALSE(FirstInstance(folder()).isFirst());
    EXPECT_TRUE(waitUntil([&] { return starts.count() == 1; }));
    EXPECT_FALSE(FirstInstance(folder()).isFirst());
    EXPECT_TRUE(waitUntil([&] { return starts.count() == 2; }));
    EXPECT_TRUE(first.isFirst());
}

TEST_F(FirstInstanceTest, GivesWayToTheNextWithItsEnd)
{
    {
        const FirstInstance first(folder());
    }
    EXPECT_TRUE(QFile::exists(folder() + u"/running"_s)) << "as after a crash";
    const FirstInstance next(folder());
    EXPECT_TRUE(next.isFirst());
    EXPECT_FALSE(FirstInstance(folder()).isFirst());
}

TEST_F(FirstInstanceTest, IsOneForEachFolder)
{
    const FirstInstance first(folder());
    const FirstInstance elsewhere(scratch.filePath(u"elsewhere"_s));
    EXPECT_TRUE(elsewhere.isFirst());
    EXPECT_TRUE(FirstInstance(std::nullopt).isFirst());
}

TEST_F(FirstInstanceTest, LeavesAFileOfThatNameAlone)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    QFile file(folder() + u"/running"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_TRUE(FirstInstance(folder()).isFirst());
    EXPECT_TRUE(FirstInstance(folder()).isFirst());
    EXPECT_EQ(file.size(), 0);
    EXPECT_TRUE(QFileInfo(file).isFile());
}

TEST_F(FirstInstanceTest, IsFirstWhereNothingCanBeMade)
{
    EXPECT_TRUE(FirstInstance(u"/proc/nothing/here"_s).isFirst());
}

TEST_F(FirstInstanceTest, KeepsItsFolderAndPipeFromOthers)
{
    const mode_t mask = ::umask(0);
    const FirstInstance first(folder());
    ::umask(mask);
    struct stat status = {};
    ASSERT_EQ(::stat(pipe().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    ASSERT_EQ(::stat(QFile::encodeName(folder()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}
