#include "Screens/TestWindow.h"
#include "Screens/TimerWatch.h"
#include "TidewellApp/Files/OutputSaving.h"
#include "TidewellApp/Files/SavingSheet.h"

#include <QFileDialog>
#include <QMainWindow>
#include <QProgressBar>

#include <atomic>
#include <semaphore>

using namespace Qt::StringLiterals;

namespace
{

/// When the progress of a saving that ends only when a test lets it is shown, and what it shows.
class OutputSavingProgress : public testing::Test
{
protected:
    OutputSavingProgress()
    {
        window.show();
        run.append(u"all of it\n"_s, OutputKind::out);
    }

    ~OutputSavingProgress() override { all.release(2); }

    /// Chooses a file in the dialog, `times` times.
    void begin(OutputSaving &saving, int times = 1)
    {
        saving.action()->trigger();
        auto *dialog = window.findChild<QFileDialog *>();
        ASSERT_NE(dialog, nullptr);
        for (int time = 0; time < times; ++time)
            Q_EMIT dialog->fileSelected(folder.filePath(u"output.txt"_s));
        delete dialog;
    }

    QList<SavingSheet *> sheets() const { return window.findChildren<SavingSheet *>(); }

    std::counting_semaphore<> all{0};
    QTemporaryDir folder;
    RunController run;
    QMainWindow window;
};

} // namespace

TEST_F(OutputSavingProgress, IsOneSheetThatBeginsWithHowFarItHasComeOfWhatThereIs)
{
    run.clearTranscript(); // what is counted begins behind it
    run.append(u"12345678"_s, OutputKind::out);
    std::atomic<bool> isHalfDone = false;
    const auto writeHalf = [&](const QString &, const TextSnapshot &text, OutputFile::Progress &progress) {
        progress.done = (text.end() - text.begin()) / 2;
        isHalfDone = true;
        all.acquire();
        return std::optional<QString>();
    };
    OutputSaving saving(run, window, writeHalf, std::chrono::hours(1));
    saving.showProgress();
    EXPECT_TRUE(sheets().isEmpty()) << "nothing is saved yet";
    begin(saving, 2);
    ASSERT_TRUE(waitUntil([&] { return isHalfDone.load(); }));
    for (int times = 0; times < 2; ++times)
        saving.showProgress();
    ASSERT_EQ(sheets().size(), 1);
    const auto *bar = sheets().first()->findChild<QProgressBar *>();
    EXPECT_EQ(bar->value(), 500);
    EXPECT_EQ(bar->maximum(), 1000);
    all.release();
    EXPECT_TRUE(waitUntil([&] { return !saving.isSaving(); }));
}

TEST_F(OutputSavingProgress, IsWholeForASingleCharacter)
{
    run.clearTranscript();
    run.append(u"1"_s, OutputKind::out);
    std::atomic<bool> isDone = false;
    const auto writeIt = [&](const QString &, const TextSnapshot &, OutputFile::Progress &progress) {
        progress.done = 1;
        isDone = true;
        all.acquire();
        return std::optional<QString>();
    };
    OutputSaving saving(run, window, writeIt, std::chrono::hours(1));
    begin(saving);
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
    saving.showProgress();
    ASSERT_EQ(sheets().size(), 1);
    const auto *bar = sheets().first()->findChild<QProgressBar *>();
    EXPECT_EQ(bar->value(), bar->maximum());
    all.release();
    EXPECT_TRUE(waitUntil([&] { return !saving.isSaving(); }));
}

TEST_F(OutputSavingProgress, IsShownAfterHalfASecond)
{
    const auto writeOnceToldTo = [this](const QString &, const TextSnapshot &, OutputFile::Progress &) {
        all.acquire();
        return std::optional<QString>();
    };
    OutputSaving saving(run, window, writeOnceToldTo);
    const TimerWatch patience(std::chrono::milliseconds(500));
    begin(saving);
    EXPECT_TRUE(sheets().isEmpty());
    EXPECT_TRUE(waitUntil([this] { return !sheets().isEmpty(); }));
    EXPECT_NE(patience.timer(), nullptr);
    all.release();
    EXPECT_TRUE(waitUntil([&] { return !saving.isSaving(); }));
}
