#include "TidewellApp/Files/OutputFile.h"

#include "Support/Mebibyte.h"
#include "Support/OutputTexts.h"
#include "Support/Printing.h"
#include "Support/Waiting.h"
#include "Transcript/Transcript.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace
{

/// What bringing a file to the disk fails with; 0 when it succeeds.
std::atomic<int> syncError = 0;
/// What the user cancels as soon as the disk has begun, which then takes until it is no longer slow; null for none.
std::atomic<OutputFile::Progress *> cancelledMeanwhile = nullptr;
std::atomic<bool> isDiskSlow = false;
std::atomic<int> syncsGoing = 0;
std::atomic<int> syncsDone = 0;
/// So many times it is interrupted first.
std::atomic<int> interruptions = 0;

} // namespace

/// In place of the system's, for all that this program is linked from.
extern "C" int fsync(int /*descriptor*/)
{
    if (interruptions > 0) {
        --interruptions;
        errno = EINTR;
        return -1;
    }
    ++syncsGoing;
    if (OutputFile::Progress *const progress = cancelledMeanwhile)
        progress->isCancelled = true;
    isDiskSlow.wait(true);
    --syncsGoing;
    ++syncsDone;
    errno = syncError;
    return syncError == 0 ? 0 : -1;
}

namespace
{

class OutputFileTest : public testing::Test
{
protected:
    OutputFileTest()
    {
        // Past the bound of a file's size comes this signal, too.
        std::signal(SIGXFSZ, SIG_IGN);
        put("what was there before");
    }

    ~OutputFileTest() override
    {
        const bool isWhoItWas = m_user != 0 || (::seteuid(0) == 0 && ::setreuid(0, static_cast<uid_t>(-1)) == 0);
        EXPECT_TRUE(isWhoItWas);
    }

    void put(const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    QByteArray content(const QString &name = u"output.txt"_s)
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }

    std::optional<QString> save(const QString &to)
    {
        OutputFile::Progress progress;
        return OutputFile::write(to, transcript.record().snapshot(), progress);
    }

    /// Nothing came of it, and nothing is left of it.
    void expectUntouched()
    {
        EXPECT_EQ(content(), "what was there before");
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                  QStringList{u"output.txt"_s});
    }

    /// As somebody whom the permissions of files concern.
    void stopBeingRoot()
    {
        if (m_user != 0)
            return;
        constexpr uid_t nobody = 65534;
        EXPECT_EQ(::chown(qPrintable(folder.path()), nobody, nobody), 0);
        EXPECT_EQ(::chown(qPrintable(path), nobody, nobody), 0);
        EXPECT_TRUE(::setreuid(nobody, static_cast<uid_t>(-1)) == 0 && ::seteuid(nobody) == 0);
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"output.txt"_s);
    Transcript transcript;

private:
    const uid_t m_user = ::geteuid();
};

} // namespace

TEST_F(OutputFileTest, HoldsTheTextByteForByteHoweverItIsKept)
{
    const QByteArray text = OutputTexts::text(OutputTexts::Kind::wide, 5'000'000);
    transcript.append(QUtf8StringView(text.constData(), text.size()), OutputKind::out);
    transcript.append(u8"and an error \u00e9\x07\r\n", OutputKind::err);
    OutputFile::Progress progress;
    EXPECT_EQ(OutputFile::write(path, transcript.record().snapshot(), progress), std::nullopt);
    EXPECT_TRUE(content() == text + "and an error \xc3\xa9\x07\r\n");
    EXPECT_EQ(progress.done, text.size() + 18);
}

TEST_F(OutputFileTest, LeavesTheOldFileToWhoStillReadsIt)
{
    transcript.append(u8"new\n", OutputKind::out);
    QFile reader(path);
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    EXPECT_EQ(save(path), std::nullopt);
    EXPECT_EQ(content(), "new\n");
    EXPECT_EQ(reader.readAll(), "what was there before");
}

TEST_F(OutputFileTest, GoesWhereALinkLeads)
{
    transcript.append(u8"new\n", OutputKind::out);
    const QString link = folder.filePath(u"link"_s);
    ASSERT_TRUE(QFile::link(path, link));
    EXPECT_EQ(save(link), std::nullopt);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(content(), "new\n");
}

TEST_F(OutputFileTest, RefusesAFolderWithASentence)
{
    transcript.append(u8"new\n", OutputKind::out);
    const std::optional<QString> failure = save(folder.path());
    ASSERT_TRUE(failure);
    EXPECT_TRUE(failure->startsWith(u"It cannot be written: "_s) && failure->endsWith(u'.')) << failure->toStdString();
    expectUntouched();
}

TEST_F(OutputFileTest, RefusesAFileOrAFolderThatMustNotBeWritten)
{
    transcript.append(u8"new\n", OutputKind::out);
    stopBeingRoot();
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::ReadOwner));
    EXPECT_TRUE(save(path));
    expectUntouched();
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    ASSERT_TRUE(QFile::setPermissions(folder.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    EXPECT_TRUE(save(path));
    expectUntouched();
    ASSERT_TRUE(
        QFile::setPermissions(folder.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    EXPECT_EQ(save(path), std::nullopt);
}

TEST_F(OutputFileTest, LeavesTheOldFileWhenThereIsNoRoomForTheNewOne)
{
    const QByteArray text = OutputTexts::text(OutputTexts::Kind::plain, 4'000'000);
    transcript.append(QUtf8StringView(text.constData(), text.size()), OutputKind::out);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tight{1'000'000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    const std::optional<QString> failure = save(path);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(failure, u"It cannot be written: "_s + qt_error_string(EFBIG) + u'.');
    expectUntouched();
}

TEST_F(OutputFileTest, LeavesTheOldFileWhenTheTextDoesNotReachTheDisk)
{
    transcript.append(u8"new\n", OutputKind::out);
    syncError = EIO;
    const std::optional<QString> failure = save(path);
    syncError = 0;
    EXPECT_EQ(failure, u"It cannot be written: "_s + qt_error_string(EIO) + u'.');
    expectUntouched();
}

TEST_F(OutputFileTest, IsSavedWhereNothingCanBeBroughtToADisk)
{
    transcript.append(u8"new\n", OutputKind::out);
    for (const int error : {EINVAL, ENOTSUP}) {
        put("what was there before");
        syncError = error;
        EXPECT_EQ(save(path), std::nullopt);
        EXPECT_EQ(content(), "new\n");
    }
    syncError = 0;
}

TEST_F(OutputFileTest, LeavesTheOldFileWhenItIsCancelled)
{
    transcript.append(u8"new\n", OutputKind::out);
    OutputFile::Progress progress;
    progress.isCancelled = true;
    EXPECT_EQ(OutputFile::write(path, transcript.record().snapshot(), progress), std::nullopt);
    expectUntouched();
}

TEST_F(OutputFileTest, IsCancelledWithoutWaitingForTheDisk)
{
    transcript.append(u8"new\n", OutputKind::out);
    OutputFile::Progress progress;
    cancelledMeanwhile = &progress;
    isDiskSlow = true;
    EXPECT_EQ(OutputFile::write(path, transcript.record().snapshot(), progress), std::nullopt);
    expectUntouched();
    EXPECT_EQ(syncsGoing, 1);
    cancelledMeanwhile = nullptr;
    isDiskSlow = false;
    isDiskSlow.notify_all();
    EXPECT_TRUE(waitUntil([] { return syncsGoing == 0; }));
}

TEST_F(OutputFileTest, IsBroughtToTheDiskHoweverOftenThatIsInterrupted)
{
    transcript.append(u8"new\n", OutputKind::out);
    interruptions = 3;
    EXPECT_EQ(save(path), std::nullopt);
    EXPECT_EQ(interruptions, 0);
    EXPECT_EQ(content(), "new\n");
}

TEST_F(OutputFileTest, IsBroughtToTheDiskOnceMoreForEvery64MebibytesBeforeItsEnd)
{
    const auto syncsOf = [this](qsizetype size) {
        transcript.clear();
        const QByteArray text = QByteArray("output\n").repeated(size / 7);
        transcript.append(QUtf8StringView(text.constData(), text.size()), OutputKind::out);
        syncsDone = 0;
        EXPECT_EQ(save(path), std::nullopt);
        EXPECT_EQ(QFileInfo(path).size(), text.size());
        return syncsDone.load();
    };
    const int once = syncsOf(mebibyte);
    EXPECT_EQ(syncsOf(63 * mebibyte), once);
    EXPECT_EQ(syncsOf(64 * mebibyte + mebibyte / 2), once + 1);
}

TEST_F(OutputFileTest, CountsWhatIsWrittenFromTheBeginningOfTheText)
{
    transcript.append(u8"old and long\n", OutputKind::out);
    transcript.clear();
    transcript.append(u8"new\n", OutputKind::out);
    ASSERT_GT(transcript.record().begin(), 0);
    OutputFile::Progress progress;
    EXPECT_EQ(OutputFile::write(path, transcript.record().snapshot(), progress), std::nullopt);
    EXPECT_EQ(progress.done, 4);
}
