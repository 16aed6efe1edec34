#include "TidewellApp/OutputWindow.h"

#include "Find/FindBar.h"
#include "Find/FindablePane.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "OutputPane/OutputPane.h"
#include "Screens/EventCount.h"
#include "Screens/KeyboardWalk.h"
#include "Screens/Places.h"
#include "Screens/TestWindow.h"
#include "TidewellApp/MainWindow.h"
#include "Unit/Transcript/RandomText.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace
{

class OutputWindowTest : public testing::Test
{
protected:
    OutputWindowTest()
    {
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    static QList<OutputWindow *> all()
    {
        QList<OutputWindow *> found;
        for (QWidget *each : QApplication::topLevelWidgets()) {
            if (auto *output = qobject_cast<OutputWindow *>(each))
                found.append(output);
        }
        return found;
    }

    OutputWindow &show()
    {
        QTest::keyClick(window.focusWidget(), Qt::Key_O, Qt::ControlModifier | Qt::AltModifier);
        EXPECT_EQ(all().size(), 1);
        EXPECT_TRUE(QTest::qWaitForWindowActive(all().first()));
        return *all().first();
    }

    static OutputPane &pane(OutputWindow &output) { return *output.findChild<OutputPane *>(); }

    void append(int lines)
    {
        for (int line = 0; line < lines; ++line)
            tools.run.append(u"line %1\n"_s.arg(++m_lines), OutputKind::out);
    }

    void appendAndShow(OutputPane &shown, int lines)
    {
        append(lines);
        const int before = shown.verticalScrollBar()->maximum();
        EXPECT_TRUE(waitUntil([&] { return shown.verticalScrollBar()->maximum() > before; }));
    }

    TestWindow tools;
    MainWindow window{tools.controllers()};

private:
    int m_lines = 0;
};

} // namespace

TEST_F(OutputWindowTest, IsOneAtMostAndComesForwardWhenAskedForAgain)
{
    OutputWindow &first = show();
    EXPECT_EQ(first.windowTitle(), u"All Output"_s);
    EXPECT_EQ(ByName::nameOf(first.focusWidget()), u"Output"_s);
    EXPECT_EQ(first.windowIcon().availableSizes(), window.windowIcon().availableSizes());
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const EventCount raised(first, QEvent::ZOrderChange);
    EXPECT_EQ(&show(), &first);
    EXPECT_GT(raised.count(), 0);
}

TEST_F(OutputWindowTest, ShowsWhatTheRunScreenNoLongerDoes)
{
    tools.run.append(u"the first line\n"_s, OutputKind::out);
    tools.run.append(QString(2 * Transcript::characterBound, u'x'), OutputKind::err);
    tools.run.append(u"\nthe last line\n"_s, OutputKind::out);
    EXPECT_FALSE(tools.run.plainText().contains(u"the first line"_s));
    OutputPane &all = pane(show());
    all.selectAll();
    EXPECT_TRUE(all.selectedText().startsWith(u"the first line\nxx"_s));
    EXPECT_TRUE(all.selectedText().endsWith(u"x\nthe last line\n"_s));
    OutputPane &usual = *window.findChild<OutputPane *>();
    usual.selectAll();
    EXPECT_FALSE(usual.selectedText().contains(u"the first line"_s));
}

TEST_F(OutputWindowTest, LeadsToTheEndWhoHasLeftIt)
{
    OutputWindow &output = show();
    appendAndShow(pane(output), 1000);
    EXPECT_FALSE(ByName::shows(output, u"Jump to End"_s));
    const QRect place = pane(output).geometry();
    pane(output).verticalScrollBar()->setValue(0);
    EXPECT_TRUE(ByName::isOffered(output, u"Jump to End"_s));
    EXPECT_EQ(pane(output).geometry(), place) << "nothing moves for the button";
    appendAndShow(pane(output), 1000);
    EXPECT_EQ(pane(output).verticalScrollBar()->value(), 0);

    ByName::find<QAbstractButton>(output, u"Jump to End"_s)->setFocus();
    QTest::keyClick(output.focusWidget(), Qt::Key_Space);
    EXPECT_EQ(pane(output).verticalScrollBar()->value(), pane(output).verticalScrollBar()->maximum());
    EXPECT_FALSE(ByName::shows(output, u"Jump to End"_s));
    EXPECT_EQ(output.focusWidget(), &pane(output));
    appendAndShow(pane(output), 1000);
    EXPECT_EQ(pane(output).verticalScrollBar()->value(), pane(output).verticalScrollBar()->maximum());
}

TEST_F(OutputWindowTest, LeavesTheRunScreensOwnPaneToItsJumps)
{
    OutputWindow &output = show();
    appendAndShow(pane(output), 1000);
    OutputPane &usual = *window.findChild<OutputPane *>();
    EXPECT_TRUE(waitUntil([&] { return usual.verticalScrollBar()->maximum() > 0; }));
    pane(output).verticalScrollBar()->setValue(0);
    usual.verticalScrollBar()->setValue(0);
    append(100);
    EXPECT_TRUE(waitUntil([&] { return usual.verticalScrollBar()->value() == usual.verticalScrollBar()->maximum(); }));
    EXPECT_EQ(pane(output).verticalScrollBar()->value(), 0);
}

TEST_F(OutputWindowTest, IsClosedByItsShortcutWhileARunGoesWhichGoesOn)
{
    tools.orbStack.setRunning(true);
    RunJob job;
    job.script = u"while :; do echo more; done"_s;
    job.distro = u"debian"_s;
    job.disposable = true;
    OutputWindow &output = show();
    tools.run.start(job, &tools.history);
    ASSERT_TRUE(waitUntil([&] { return pane(output).verticalScrollBar()->maximum() > 0; }));
    QTest::keySequence(&output, QKeySequence::Close);
    EXPECT_TRUE(waitUntil([] { return all().isEmpty(); }));
    const qint64 revision = tools.run.revision();
    EXPECT_TRUE(waitUntil([&] { return tools.run.revision() > revision + 10; }));
    EXPECT_TRUE(tools.run.isRunning());
    EXPECT_TRUE(window.isVisible());
}

TEST_F(OutputWindowTest, ComesBackAtTheSizeItWasLeftWith)
{
    show().resize(700, 500);
    all().first()->close();
    ASSERT_TRUE(waitUntil([] { return all().isEmpty(); }));
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_EQ(show().size(), QSize(700, 500));
}

TEST_F(OutputWindowTest, SavesTheOutputByTheSameShortcut)
{
    OutputWindow &output = show();
    append(1);
    QTest::keySequence(&output, QKeySequence::Save);
    EXPECT_NE(output.findChild<QFileDialog *>(), nullptr);
    EXPECT_EQ(window.findChild<QFileDialog *>(), nullptr);
}

TEST_F(OutputWindowTest, IsWalkedThroughByTab)
{
    OutputWindow &output = show();
    KeyboardWalk::expectGoodFor(output);
    appendAndShow(pane(output), 1000);
    pane(output).verticalScrollBar()->setValue(0);
    KeyboardWalk::expectGoodFor(output);
}

TEST_F(OutputWindowTest, StandsByItselfButEndsWithTheMainWindow)
{
    const OutputWindow &output = show();
    EXPECT_EQ(output.windowHandle()->transientParent(), nullptr);
    EXPECT_FALSE(output.testAttribute(Qt::WA_QuitOnClose));
    {
        MainWindow other(tools.controllers());
        other.showAllOutput();
        EXPECT_EQ(all().size(), 2);
    }
    EXPECT_EQ(all(), QList<OutputWindow *>{const_cast<OutputWindow *>(&output)});
}

TEST_F(OutputWindowTest, HasRoomForTheBarThatFindsWhenItIsAsNarrowAsItGets)
{
    OutputWindow &output = show();
    append(1);
    output.findChild<FindablePane *>()->find();
    output.resize(output.minimumSize());
    QCoreApplication::processEvents();
    const auto *bar = output.findChild<FindBar *>();
    ASSERT_TRUE(bar->isVisible());
    EXPECT_GE(bar->width(), bar->minimumSizeHint().width());
    EXPECT_GE(ByName::find<QLineEdit>(output, u"Find in output"_s)->width(), 100);
}

TEST_F(OutputWindowTest, MovesNothingWhenJumpToEndComesAndGoes)
{
    OutputWindow &output = show();
    OutputPane &shown = pane(output);
    appendAndShow(shown, 200);
    const auto *title = ByName::find<PlainLabel>(output, u"Output"_s);
    EXPECT_EQ(title->font(), Typography::headline());
    EXPECT_EQ(Places::in(output, title).left(), 12);
    const QRect before = Places::in(output, &shown);
    EXPECT_EQ(before.left(), 12);
    EXPECT_EQ(before.bottomRight(), output.rect().bottomRight() - QPoint(12, 12));
    EXPECT_FALSE(ByName::shows(output, u"Jump to End"_s));
    shown.scrollTo(shown.text().begin());
    const auto *jump = ByName::find<QPushButton>(output, u"Jump to End"_s);
    ASSERT_NE(jump, nullptr);
    QCoreApplication::processEvents();
    EXPECT_EQ(Places::in(output, &shown), before);
    EXPECT_EQ(Places::in(output, jump).right(), output.width() - 12 - 1);
    EXPECT_EQ((Places::in(output, title) | Places::in(output, jump)).top(), 12);
    EXPECT_EQ(Places::gapsBelow(output, {{title, jump}, {&shown}}), QList<int>{6});
}

TEST_F(OutputWindowTest, LeavesTheKeyboardWhereItIsWhenTheEndComesIntoView)
{
    OutputWindow &output = show();
    appendAndShow(pane(output), 1000);
    QTest::keyClick(output.focusWidget(), Qt::Key_F, Qt::ControlModifier);
    const auto *field = ByName::find<QLineEdit>(output, u"Find in output"_s);
    ASSERT_NE(field, nullptr);
    ASSERT_EQ(output.focusWidget(), field);
    pane(output).verticalScrollBar()->setValue(0);
    EXPECT_TRUE(ByName::isOffered(output, u"Jump to End"_s));
    EXPECT_EQ(output.focusWidget(), field);
    pane(output).jumpToEnd();
    EXPECT_FALSE(ByName::shows(output, u"Jump to End"_s));
    EXPECT_EQ(output.focusWidget(), field);
}

TEST(OutputWindow, SaysHowMuchOfTheOutputCouldNotBeKept)
{
    TextStorage storage;
    storage.plainBlocks = 4;
    storage.packedBytes = TextStorage::mebibyte;
    storage.folder = "/nowhere";
    TestWindow tools(true, {}, storage);
    OutputWindow window(tools.run, {});
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.show();
    RandomText random(5);
    QByteArray noise(8'000'000, Qt::Uninitialized);
    for (char &byte : noise)
        byte = static_cast<char>(' ' + random.below(64));
    tools.run.append(QUtf8StringView(noise), OutputKind::out);
    EXPECT_TRUE(waitUntil([&] { return !tools.run.outputLoss().isEmpty(); }));
    EXPECT_TRUE(ByName::shows(window, tools.run.outputLoss()));
    OutputWindow later(tools.run, {});
    later.setAttribute(Qt::WA_DeleteOnClose, false);
    later.show();
    const QString told = tools.run.outputLoss();
    EXPECT_TRUE(ByName::shows(later, told));
    tools.run.clearTranscript();
    EXPECT_FALSE(ByName::shows(later, told));
}
