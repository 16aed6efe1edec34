#include "FindablePaneTest.h"

#include "Screens/KeyboardWalk.h"
#include "Support/ProcessorTimer.h"

#include <QCheckBox>

using namespace Qt::StringLiterals;

TEST_F(FindablePaneTest, HidesItsBarUntilItIsAskedFor)
{
    run.append(u"some text\n"_s, OutputKind::out);
    EXPECT_FALSE(isOpen());
    beside.setFocus();
    findable->find();
    ASSERT_TRUE(isOpen());
    EXPECT_TRUE(field()->hasFocus());
    EXPECT_GE(field()->mapTo(&window, QPoint()).y(), output->mapTo(&window, QPoint(0, output->height())).y());
    EXPECT_GE(output->height(), 160);
    QTest::keyClick(field(), Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(beside.hasFocus()) << "the focus goes back to where it was";
    output->setFocus();
    findable->find();
    QTest::keyClick(field(), Qt::Key_Escape);
    EXPECT_TRUE(output->hasFocus());
    findable->find();
    output->setFocus();
    QTest::keyClick(output, Qt::Key_Escape);
    EXPECT_FALSE(isOpen()) << "also from the pane";
    EXPECT_TRUE(output->hasFocus());
}

TEST_F(FindablePaneTest, SelectsTheFirstMatchInViewAndMarksTheOthers)
{
    run.append(u"one two\nONE two\none\n"_s, OutputKind::out);
    findable->find();
    QTest::keyClicks(field(), u"One"_s);
    EXPECT_TRUE(hasSelected(u"one"_s, 0));
    EXPECT_TRUE(says(u"1 of 3"_s));
    EXPECT_FALSE(isMarked(0)) << "it is selected";
    EXPECT_TRUE(isMarked(8));
    EXPECT_TRUE(isMarked(18));
    EXPECT_FALSE(isMarked(4));
    EXPECT_TRUE(field()->hasFocus());
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_TRUE(hasSelected(u"ONE"_s, 8));
    EXPECT_TRUE(says(u"2 of 3"_s));
    QTest::keyClick(field(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_TRUE(hasSelected(u"one"_s, 0));
    ByName::press(window, u"Previous match"_s);
    EXPECT_TRUE(hasSelected(u"one"_s, 16)) << "on from the end";
    EXPECT_TRUE(says(u"3 of 3"_s));
    ByName::press(window, u"Next match"_s);
    EXPECT_TRUE(hasSelected(u"one"_s, 0));
    QTest::keyClick(field(), Qt::Key_Escape);
    EXPECT_FALSE(isMarked(8));
    EXPECT_EQ(output->selectedText(), u"one"_s) << "what was found stays selected";
}

TEST_F(FindablePaneTest, FindsExactlyWhatIsWrittenWhenCaseMatters)
{
    run.append(u"one two\nONE two\none\n"_s, OutputKind::out);
    type(u"ONE"_s);
    EXPECT_TRUE(says(u"1 of 3"_s));
    ByName::find<QCheckBox>(window, u"Match case"_s)->click();
    EXPECT_TRUE(hasSelected(u"ONE"_s, 8));
    EXPECT_TRUE(says(u"1 of 1"_s));
    EXPECT_FALSE(isMarked(0));
}

TEST_F(FindablePaneTest, ScrollsToAMatchThatIsNotInView)
{
    fill(3000);
    type(u"line 1234\n"_s);
    EXPECT_TRUE(says(u"1 of 1"_s));
    const TextView::Position place = output->selection().begin();
    EXPECT_EQ(output->selectedText(), u"line 1234\n"_s);
    EXPECT_TRUE(waitUntil([&] { return isInView(place); }));
    const int y = output->characterRect(place).center().y();
    EXPECT_GT(y, output->viewport()->height() / 4) << "with what is around it";
    EXPECT_LT(y, output->viewport()->height() * 3 / 4);
    const int before = output->verticalScrollBar()->value();
    field()->setText(u"line 123"_s);
    EXPECT_TRUE(says(u"6 of 11"_s)) << "the same one, behind 123 and 1230 to 1233";
    EXPECT_EQ(output->selection().begin(), place);
    EXPECT_EQ(output->verticalScrollBar()->value(), before) << "nothing moves for what is in view";
}

TEST_F(FindablePaneTest, KeepsTheCountTrueWhileOutputArrivesAndIsTrimmedAndCleared)
{
    run.append(u"one\n"_s, OutputKind::err);
    type(u"one"_s);
    EXPECT_TRUE(says(u"1 of 1"_s));
    run.append(u"one\none\n"_s, OutputKind::out);
    EXPECT_TRUE(says(u"1 of 3"_s));
    EXPECT_TRUE(waitUntil([this] { return isMarked(4); }));
    run.append(QString(400'001, u'x'), OutputKind::info);
    EXPECT_TRUE(says(u"2 matches"_s)) << "the one that was found is dropped";
    run.clearTranscript();
    EXPECT_TRUE(says(u"Not found"_s));
    run.append(u"one more\n"_s, OutputKind::out);
    EXPECT_TRUE(says(u"1 match"_s));
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_TRUE(says(u"1 of 1"_s));
}

TEST_F(FindablePaneTest, FindsATextThatSpansSegments)
{
    run.append(u"out and "_s, OutputKind::out);
    run.append(u"err\n"_s, OutputKind::err);
    type(u"and err"_s);
    EXPECT_TRUE(hasSelected(u"and err"_s, 4));
    EXPECT_TRUE(says(u"1 of 1"_s));
}

TEST_F(FindablePaneTest, SaysThatNothingIsFoundAndNothingForAnEmptyText)
{
    run.append(u"some text\n"_s, OutputKind::out);
    output->select(5, 9);
    type(u"other"_s);
    EXPECT_TRUE(says(u"Not found"_s));
    EXPECT_EQ(output->selectedText(), u"text"_s);
    field()->clear();
    EXPECT_TRUE(waitUntil([this] { return !ByName::shows(window, u"Not found"_s); }));
    field()->setText(QString(QChar(0xd83d)));
    EXPECT_TRUE(says(u"Not found"_s)) << "half a surrogate pair";
}

TEST_F(FindablePaneTest, LooksForTheSelectionWithoutTakingTheFocus)
{
    run.append(u"one two\none two\n"_s, OutputKind::out);
    findable->useSelectionForFind();
    EXPECT_FALSE(isOpen()) << "nothing is selected";
    output->select(12, 15);
    findable->useSelectionForFind();
    EXPECT_TRUE(says(u"2 of 2"_s));
    EXPECT_EQ(field()->text(), u"two"_s);
    EXPECT_EQ(output->selection().begin(), 12);
    EXPECT_TRUE(output->hasFocus());
    findable->findNext();
    EXPECT_TRUE(hasSelected(u"two"_s, 4));
    EXPECT_TRUE(output->hasFocus());
}

TEST_F(FindablePaneTest, GoesOnWithTheSameTextAndAsksForOneWhenThereIsNone)
{
    run.append(u"one two one\n"_s, OutputKind::out);
    findable->findNext();
    ASSERT_TRUE(isOpen());
    EXPECT_TRUE(field()->hasFocus());
    field()->setText(u"one"_s);
    EXPECT_TRUE(hasSelected(u"one"_s, 0));
    QTest::keyClick(field(), Qt::Key_Escape);
    findable->findNext();
    EXPECT_TRUE(hasSelected(u"one"_s, 8));
    EXPECT_TRUE(says(u"2 of 2"_s));
    output->select(4, 7);
    QTest::keyClick(output, Qt::Key_Escape);
    findable->find();
    EXPECT_EQ(field()->selectedText(), u"one"_s) << "ready to be typed over";
    EXPECT_TRUE(says(u"2 matches"_s));
    EXPECT_EQ(output->selectedText(), u"two"_s) << "nothing moves before it is asked for";
    field()->deselect();
    findable->find();
    EXPECT_EQ(field()->selectedText(), u"one"_s) << "also where it has the keyboard already";
}

TEST_F(FindablePaneTest, TakesATextOfAMegabyteWithoutAStall)
{
    fill(1000);
    output->selectAll();
    run.append(QString(2'000'000, u'y'), OutputKind::out);
    output->selectAll();
    ProcessorTimer watch;
    watch.start();
    findable->useSelectionForFind();
    findable->find();
    field()->setText(QString(1'000'000, u'y'));
    EXPECT_LT(watch.elapsed(), 1000);
    EXPECT_EQ(field()->text().size(), FindBar::longestText);
    EXPECT_TRUE(says(u"1 of 200"_s) || says(u"200 of 200"_s));
    const QString pairs = u"\U0001f43b"_s.repeated(FindBar::longestText);
    run.append(u"x"_s + pairs, OutputKind::out);
    output->select(run.transcript().text().end() - pairs.toUtf8().size() - 1, run.transcript().text().end());
    findable->useSelectionForFind();
    EXPECT_TRUE(field()->text().isValidUtf16()) << "no pair is halved";
    EXPECT_TRUE(says(u"1 of 1"_s));
}

TEST_F(FindablePaneTest, SearchesOnThroughClearAndANewRunAndEndsWithItsWindow)
{
    for (int piece = 0; piece < 40; ++piece)
        run.append(u"0123456789abcdef\n"_s.repeated(60'000), OutputKind::out);
    type(u"nowhere"_s);
    run.clearTranscript();
    EXPECT_TRUE(says(u"Not found"_s));
    run.append(u"now here, nowhere\n"_s, OutputKind::out);
    EXPECT_TRUE(says(u"1 match"_s));
    for (int piece = 0; piece < 40; ++piece)
        run.append(u"0123456789abcdef\n"_s.repeated(60'000), OutputKind::out);
    field()->setText(u"f"_s);
    delete findable;
    findable = nullptr;
    run.append(u"and on\n"_s, OutputKind::out);
    EXPECT_EQ(QApplication::activeWindow(), &window);
}

TEST_F(FindablePaneTest, SelectsNothingAfterItsBarIsClosed)
{
    const TextView &all = run.transcript().record();
    for (int piece = 0; piece < 40; ++piece)
        run.append(u"0123456789abcdef\n"_s.repeated(60'000), OutputKind::out);
    run.append(u"needle\n"_s, OutputKind::out);
    auto *pane = new OutputPane(run, all);
    FindablePane hasty(pane, run, &window);
    window.layout()->addWidget(&hasty);
    hasty.show();
    const auto typeInto = [](FindablePane &where) {
        where.find();
        where.findChild<QLineEdit *>()->setText(u"needle"_s);
    };
    typeInto(hasty);
    QTest::keyClick(hasty.findChild<QLineEdit *>(), Qt::Key_Escape);
    auto *patientPane = new OutputPane(run, all);
    FindablePane patient(patientPane, run, &window);
    window.layout()->addWidget(&patient);
    patient.show();
    typeInto(patient);
    EXPECT_TRUE(waitUntil([&] { return patientPane->selectedText() == u"needle"_s; })) << "asked for later";
    EXPECT_EQ(pane->selectedText(), QString());
}

TEST_F(FindablePaneTest, IsWalkedThroughByKeyboard)
{
    run.append(u"some text\n"_s, OutputKind::out);
    beside.setAccessibleName(u"Beside"_s);
    findable->find();
    KeyboardWalk::expectGoodFor(window);
    EXPECT_EQ(ByName::nameOf(field()), u"Find in output"_s);
    field()->setFocus();
    for (const QString &name : {u"Previous match"_s, u"Next match"_s, u"Match case"_s}) {
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(ByName::nameOf(window.focusWidget()), name);
    }
}

TEST_F(FindablePaneTest, LeavesTheKeysOfTheBarToTheBar)
{
    fill(1000);
    findable->find();
    const TextView::Position caret = output->selection().caret().position;
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_PageUp, Qt::Key_Home})
        QTest::keyClick(field(), key);
    EXPECT_EQ(output->selection().caret().position, caret);
}
