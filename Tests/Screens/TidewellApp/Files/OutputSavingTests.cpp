#include "TidewellApp/Files/OutputSaving.h"

#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "Screens/KeyboardWalk.h"
#include "Screens/Places.h"
#include "Screens/TestWindow.h"
#include "Screens/TimerWatch.h"
#include "TidewellApp/Files/SavingSheet.h"
#include "TidewellApp/MainWindow.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>

#include <semaphore>

using namespace Qt::StringLiterals;

namespace
{

/// Saving that goes on only as far as a test lets it.
class OutputSavingTest : public testing::Test
{
protected:
    OutputSavingTest()
    {
        window.setCentralWidget(new QPushButton(u"a control"_s));
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        run.append(u"all of it\n"_s, OutputKind::out);
    }

    ~OutputSavingTest() override
    {
        half.release(2);
        all.release(2);
    }

    std::optional<QString> write(const QString &to, const TextSnapshot &text, OutputFile::Progress &progress)
    {
        half.acquire();
        progress.done = (text.end() - text.begin()) / 2;
        all.acquire();
        return failure.isEmpty() ? OutputFile::write(to, text, progress) : std::optional(failure);
    }

    /// Chooses this file in the dialog.
    void begin(const QString &to)
    {
        saving.action()->trigger();
        auto *dialog = window.findChild<QFileDialog *>();
        ASSERT_NE(dialog, nullptr);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(dialog->windowTitle(), u"Save Output"_s);
        EXPECT_EQ(dialog->defaultSuffix(), u"txt"_s);
        EXPECT_EQ(dialog->fileMode(), QFileDialog::AnyFile);
        EXPECT_TRUE(dialog->selectedFiles().value(0).endsWith(u"/output.txt"_s));
        Q_EMIT dialog->fileSelected(to);
        delete dialog;
    }

    SavingSheet *sheet() const
    {
        auto *found = window.findChild<SavingSheet *>();
        return found != nullptr && found->isVisible() ? found : nullptr;
    }

    QByteArray content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    std::counting_semaphore<> half{0};
    std::counting_semaphore<> all{0};
    QString failure;
    QTemporaryDir folder;
    const QString path = folder.filePath(u"output.txt"_s);
    RunController run;
    QMainWindow window;
    OutputSaving saving{run, window,
                        [this](const QString &to, const TextSnapshot &text, OutputFile::Progress &progress) {
                            return write(to, text, progress);
                        },
                        std::chrono::milliseconds(1)};
    QSignalSpy ended{&saving, &OutputSaving::ended};
};

} // namespace

TEST_F(OutputSavingTest, IsOfferedWhenThereIsOutputAndNoneIsBeingSaved)
{
    EXPECT_TRUE(saving.action()->isEnabled());
    run.clearTranscript();
    EXPECT_FALSE(saving.action()->isEnabled());
    run.append(u"more\n"_s, OutputKind::out);
    EXPECT_TRUE(saving.action()->isEnabled());
    begin(path);
    EXPECT_TRUE(saving.isSaving());
    EXPECT_FALSE(saving.action()->isEnabled());
    half.release();
    all.release();
    ASSERT_TRUE(waitUntil([this] { return ended.count() == 1; }));
    EXPECT_TRUE(ended.first().first().toBool());
    EXPECT_FALSE(saving.isSaving());
    EXPECT_TRUE(saving.action()->isEnabled());
    EXPECT_EQ(content(), "more\n");
}

TEST_F(OutputSavingTest, HoldsWhatThereWasWhenTheFileWasChosen)
{
    begin(path);
    run.append(u"too late\n"_s, OutputKind::out);
    half.release();
    all.release();
    ASSERT_TRUE(waitUntil([this] { return ended.count() == 1; }));
    EXPECT_EQ(content(), "all of it\n");
}

TEST_F(OutputSavingTest, GoesOnThoughTheOutputIsCleared)
{
    begin(path);
    run.clearTranscript();
    run.append(u"of another run\n"_s, OutputKind::out);
    half.release();
    all.release();
    ASSERT_TRUE(waitUntil([this] { return ended.count() == 1; }));
    EXPECT_EQ(content(), "all of it\n");
}

TEST_F(OutputSavingTest, TellsHowFarItHasCome)
{
    const TimerWatch looks(std::chrono::milliseconds(50));
    begin(path);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->windowTitle(), u"Saving “output.txt”…"_s);
    EXPECT_EQ(sheet()->width(), 420);
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    auto *bar = ByName::find<QProgressBar>(*sheet(), u"Saving “output.txt”…"_s);
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->value(), bar->minimum());
    EXPECT_FALSE(bar->isTextVisible());
    const auto *title = ByName::find<PlainLabel>(*sheet(), u"Saving “output.txt”…"_s);
    const auto *cancel = ByName::find<QPushButton>(*sheet(), u"Cancel"_s);
    EXPECT_EQ(Places::gapsBelow(*sheet(), {{title}, {bar, cancel}}), QList<int>{8});
    EXPECT_EQ(Places::gapsBeside(*sheet(), {bar, cancel}), QList<int>{12});
    EXPECT_EQ(Places::in(*sheet(), cancel).right(), Places::in(*sheet(), title).right());
    EXPECT_EQ(title->font(), Typography::headline());
    half.release();
    EXPECT_TRUE(waitUntil([bar] { return bar->value() == bar->maximum() / 2; }));
    ASSERT_NE(looks.timer(), nullptr);
    EXPECT_TRUE(looks.timer()->isActive());
    all.release();
    EXPECT_TRUE(waitUntil([this] { return ended.count() == 1; }));
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_FALSE(looks.timer()->isActive()) << "nothing is looked at any more";
}

TEST_F(OutputSavingTest, AsksOverTheMainWindowWhenTheOneInFrontCannotSave)
{
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    saving.action()->trigger();
    EXPECT_EQ(other.findChild<QFileDialog *>(), nullptr);
    auto *dialog = window.findChild<QFileDialog *>();
    EXPECT_NE(dialog, nullptr);
    delete dialog;
}

TEST_F(OutputSavingTest, CanBeCancelledByButtonEscapeAndClosing)
{
    const QList<std::function<void(SavingSheet &)>> ways{
        [](SavingSheet &shown) { ByName::press(shown, u"Cancel"_s); },
        [](SavingSheet &shown) { QTest::keyClick(&shown, Qt::Key_Escape); },
        [](SavingSheet &shown) { shown.close(); },
    };
    QFile before(path);
    ASSERT_TRUE(before.open(QIODevice::WriteOnly) && before.write("before") == 6);
    before.close();
    for (const auto &cancel : ways) {
        ended.clear();
        begin(path);
        ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
        half.release();
        cancel(*sheet());
        ASSERT_NE(sheet(), nullptr) << "until it has ended";
        EXPECT_FALSE(ByName::isOffered(*sheet(), u"Cancel"_s));
        all.release();
        ASSERT_TRUE(waitUntil([this] { return ended.count() == 1; }));
        EXPECT_FALSE(ended.first().first().toBool());
        EXPECT_EQ(sheet(), nullptr);
        EXPECT_EQ(content(), "before");
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"output.txt"_s});
        EXPECT_EQ(window.findChild<QMessageBox *>(), nullptr) << "who cancels needs no notice";
    }
}

TEST_F(OutputSavingTest, TellsAFailureInASentence)
{
    failure = u"It cannot be written: the disk is full."_s;
    begin(path);
    half.release();
    all.release();
    ASSERT_TRUE(waitUntil([this] { return ended.count() == 1; }));
    EXPECT_FALSE(ended.first().first().toBool());
    const auto *alert = window.findChild<QMessageBox *>();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->text(), u"“output.txt” was not saved."_s);
    EXPECT_EQ(alert->informativeText(), failure);
}

TEST_F(OutputSavingTest, AsksOverTheWindowInFrontWhichMayCloseMeanwhile)
{
    auto *other = new QWidget;
    other->setAttribute(Qt::WA_DeleteOnClose);
    other->addAction(saving.action());
    other->show();
    other->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(other));
    saving.action()->trigger();
    auto *dialog = other->findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    failure = u"It cannot be written."_s;
    Q_EMIT dialog->fileSelected(path);
    delete dialog;
    delete other;
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    half.release();
    all.release();
    ASSERT_TRUE(waitUntil([this] { return ended.count() == 1; }));
    EXPECT_NE(window.findChild<QMessageBox *>(), nullptr);
}

TEST_F(OutputSavingTest, TellsWhoAskedInTwoWindowsThatOneFileIsWrittenAtATime)
{
    QWidget other;
    other.addAction(saving.action());
    saving.action()->trigger();
    auto *first = window.findChild<QFileDialog *>();
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    saving.action()->trigger();
    auto *second = other.findChild<QFileDialog *>();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    Q_EMIT first->fileSelected(path);
    Q_EMIT second->fileSelected(folder.filePath(u"other.txt"_s));
    delete first;
    delete second;
    const auto *notice = other.findChild<QMessageBox *>();
    ASSERT_NE(notice, nullptr);
    EXPECT_TRUE(notice->text().contains(u"other.txt"_s)) << notice->text().toStdString();
    EXPECT_TRUE(notice->text().endsWith(u" was not saved."_s));
    EXPECT_TRUE(notice->informativeText().startsWith(u"The output is still being saved to "_s));
    EXPECT_TRUE(notice->informativeText().contains(u"output.txt"_s)) << notice->informativeText().toStdString();
    half.release();
    all.release();
    ASSERT_TRUE(waitUntil([this] { return ended.count() == 1; }));
    EXPECT_EQ(content(), "all of it\n");
    EXPECT_FALSE(QFile::exists(folder.filePath(u"other.txt"_s)));
}

TEST_F(OutputSavingTest, ShowsASheetThatIsWalkedThroughByTab)
{
    begin(path);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    ASSERT_TRUE(QTest::qWaitForWindowActive(sheet()));
    KeyboardWalk::expectGoodFor(*sheet());
    EXPECT_EQ(ByName::descriptionOf(sheet()->focusWidget()), u"Cancel the saving"_s);
}

TEST_F(OutputSavingTest, IsCancelledByTheEndOfTheApplicationWithTheOldFileAsItWas)
{
    const auto writeOnceCancelled = [](const QString &to, const TextSnapshot &text, OutputFile::Progress &progress) {
        while (!progress.isCancelled)
            std::this_thread::yield();
        return OutputFile::write(to, text, progress);
    };
    {
        OutputSaving last(run, window, writeOnceCancelled, std::chrono::milliseconds(1));
        last.action()->trigger();
        Q_EMIT window.findChild<QFileDialog *>()->fileSelected(path);
        ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    }
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}
