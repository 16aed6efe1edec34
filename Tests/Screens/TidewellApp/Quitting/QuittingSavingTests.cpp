// Quitting while output is being saved.

#include "QuittingTest.h"
#include "TidewellApp/Files/SavingSheet.h"

#include <QFile>
#include <QFileDialog>

#include <atomic>
#include <semaphore>

using namespace Qt::StringLiterals;

namespace
{

class QuittingSavingTest : public QuittingTest
{
protected:
    explicit QuittingSavingTest(Quitting::Times times = atOnce) : QuittingTest(times)
    {
        guarded.write = [this](const QString &to, const TextSnapshot &text, OutputFile::Progress &progress) {
            while (!progress.isCancelled && !mayGoOn.try_acquire())
                std::this_thread::yield();
            isCancelled = progress.isCancelled.load();
            return failure.isEmpty() ? OutputFile::write(to, text, progress) : std::optional(failure);
        };
        run.append(u"all of it\n"_s, OutputKind::out);
        guarded.saving.action()->trigger();
        auto *dialog = guarded.window.findChild<QFileDialog *>();
        Q_EMIT dialog->fileSelected(path);
        delete dialog;
    }

    ~QuittingSavingTest() override
    {
        mayGoOn.release();
        EXPECT_TRUE(waitUntil([this] { return !guarded.saving.isSaving(); })) << "it reads what goes now";
    }

    void quitAndCancelTheSaving()
    {
        EXPECT_FALSE(quit());
        ASSERT_NE(sheet(), nullptr);
        ByName::press(*sheet(), u"Cancel"_s);
        EXPECT_TRUE(waitUntil([this] { return !guarded.saving.isSaving(); }));
        QCoreApplication::processEvents();
    }

    void saveAgain()
    {
        guarded.saving.action()->trigger();
        Q_EMIT guarded.window.findChild<QFileDialog *>()->fileSelected(path);
    }

    SavingSheet *sheet() const { return guarded.window.findChild<SavingSheet *>(); }

    std::counting_semaphore<> mayGoOn{0};
    std::atomic<bool> isCancelled = false;
    QString failure;
    QTemporaryDir folder;
    const QString path = folder.filePath(u"output.txt"_s);
};

} // namespace

TEST_F(QuittingSavingTest, WaitsUntilAllIsSavedAndShowsSo)
{
    EXPECT_FALSE(quit());
    ASSERT_NE(sheet(), nullptr) << "at once, not after half a second";
    EXPECT_TRUE(sheet()->isVisible());
    EXPECT_FALSE(guarded.window.close());
    EXPECT_EQ(guarded.question(), nullptr);
    QTimer::singleShot(0, &guarded.window, [this] { mayGoOn.release(); });
    EXPECT_TRUE(endsByItself());
    QFile saved(path);
    EXPECT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(saved.readAll(), "all of it\n");
}

TEST_F(QuittingSavingTest, StaysWhenTheSavingIsCancelledOrFails)
{
    quitAndCancelTheSaving();
    EXPECT_TRUE(guarded.window.isVisible());
    EXPECT_FALSE(QFile::exists(path));

    failure = u"It cannot be written."_s;
    saveAgain();
    EXPECT_FALSE(quit());
    mayGoOn.release();
    EXPECT_NE(asked(u"“output.txt” was not saved."_s), nullptr);
    EXPECT_TRUE(guarded.window.isVisible());
}

TEST_F(QuittingSavingTest, StaysWhenAnotherSavingEndsAfterTheOneThatWasCancelled)
{
    quitAndCancelTheSaving();
    saveAgain();
    mayGoOn.release();
    // Its end is told in the next turn, and quitting would be one more.
    constexpr int stays = 1;
    int turnsSince = 0;
    QTimer turning;
    QObject::connect(&turning, &QTimer::timeout, &guarded.window, [&] {
        if (!guarded.saving.isSaving() && ++turnsSince > 5)
            QCoreApplication::exit(stays);
    });
    turning.start();
    EXPECT_EQ(QCoreApplication::exec(), stays) << "who called it off has not asked again";
    EXPECT_TRUE(QFile::exists(path));
}

TEST_F(QuittingSavingTest, StaysWhenAnOperationIsDoneForWhoHadCancelledItAfterStoppingARun)
{
    guarded.startRun(u"exec sleep 600"_s);
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    QTimer::singleShot(0, &guarded.window, [this] {
        EXPECT_TRUE(waitUntil([this] { return sheet() != nullptr && sheet()->isVisible(); }));
        if (sheet() == nullptr)
            return QCoreApplication::exit();
        ByName::press(*sheet(), u"Cancel"_s);
        EXPECT_TRUE(waitUntil([this] { return !guarded.saving.isSaving(); }));
        QCoreApplication::processEvents();
        startContainer(u"done"_s);
        EXPECT_FALSE(quit());
        EXPECT_NE(askedAboutContainer(), nullptr);
        tools().addFile(u"done"_s);
        EXPECT_TRUE(waitUntil([this] { return guarded.question() == nullptr; }));
        // Nothing ends it any more but the time that it is given.
        QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(5); });
    });
    EXPECT_EQ(QApplication::exec(), 5);
}

TEST_F(QuittingSavingTest, StaysWhenTheSavingFailsUnderAQuestionThatIsOverByItself)
{
    guarded.startRun(u"exec sleep 600"_s);
    startContainer(u"done"_s);
    EXPECT_FALSE(quit());
    press(u"Stop it and quit"_s);
    QTimer::singleShot(0, &guarded.window, [this] {
        EXPECT_NE(askedAboutContainer(), nullptr);
        failure = u"It cannot be written."_s;
        mayGoOn.release();
        EXPECT_TRUE(waitUntil([this] { return !guarded.saving.isSaving(); }));
        tools().addFile(u"done"_s);
        EXPECT_TRUE(waitUntil([this] { return !guarded.tools.containers.busy(); }));
        QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(5); });
    });
    EXPECT_EQ(QApplication::exec(), 5);
}

TEST_F(QuittingSavingTest, WithoutAQuestionCancelsItAtOnce)
{
    ASSERT_TRUE(guarded.saving.isSaving());
    guarded.guard.quitWithoutQuestion();
    EXPECT_TRUE(waitUntil([this] { return isCancelled.load(); }));
}

TEST_F(QuittingSavingTest, WithoutAQuestionCancelsItAndLeavesTheOldFile)
{
    QTimer::singleShot(0, &guarded.window, [this] { guarded.guard.quitWithoutQuestion(); });
    EXPECT_TRUE(endsByItself());
    EXPECT_FALSE(QFile::exists(path));
}

namespace
{

constexpr std::chrono::milliseconds longer(500);

/// With patience that is not yet over when the first question comes.
class SlowerQuittingSavingTest : public QuittingSavingTest
{
protected:
    SlowerQuittingSavingTest() : QuittingSavingTest({.untilAskedAgain = longer}) {}
};

} // namespace

TEST_F(SlowerQuittingSavingTest, AsksNothingOfARunThatHasEndedAndWhoseMachineWasTold)
{
    addOrbThatCannotDelete(true);
    guarded.startRun(u"exec sleep 600"_s);
    ASSERT_NE(stopToQuit(), nullptr);
    press(u"Keep open"_s);
    EXPECT_FALSE(quit());
    bool isPatienceOver = false;
    QTimer::singleShot(2 * longer, &guarded.window, [&] { isPatienceOver = true; });
    EXPECT_TRUE(waitUntil([&] { return isPatienceOver; }));
    EXPECT_EQ(guarded.question(), nullptr);
    mayGoOn.release();
    EXPECT_TRUE(endsByItself());
}
