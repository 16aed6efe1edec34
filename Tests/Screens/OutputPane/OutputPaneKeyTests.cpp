#include "OutputPaneTest.h"

using namespace Qt::StringLiterals;

TEST_F(OutputPaneTest, ExtendsTheSelectionByKeyboard)
{
    run.append(u"abcdef\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    QTest::keySequence(&pane, QKeySequence::MoveToStartOfDocument);
    QTest::keySequence(&pane, QKeySequence::SelectNextChar);
    QTest::keySequence(&pane, QKeySequence::SelectNextChar);
    EXPECT_EQ(pane.selectedText(), u"ab"_s);
    QTest::keySequence(&pane, QKeySequence::SelectEndOfLine);
    EXPECT_EQ(pane.selectedText(), u"abcdef"_s);
}

TEST_F(OutputPaneTest, MovesTheCaretByCharactersWordsRowsAndEnds)
{
    run.append(u"alpha beta\n\ngamma delta\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    struct Step {
        QKeySequence::StandardKey key;
        TextStore::Position caret;
    };
    for (const Step &step : {Step{QKeySequence::MoveToStartOfDocument, 0}, Step{QKeySequence::MoveToNextChar, 1},
                             Step{QKeySequence::MoveToNextWord, 6}, Step{QKeySequence::MoveToEndOfLine, 10},
                             Step{QKeySequence::MoveToNextLine, 11}, Step{QKeySequence::MoveToNextLine, 22},
                             Step{QKeySequence::MoveToStartOfLine, 12}, Step{QKeySequence::MoveToPreviousChar, 11},
                             Step{QKeySequence::MoveToPreviousLine, 0}, Step{QKeySequence::MoveToEndOfDocument, 24},
                             Step{QKeySequence::MoveToNextChar, 24}, Step{QKeySequence::MoveToPreviousLine, 12},
                             Step{QKeySequence::MoveToPreviousWord, 11}, Step{QKeySequence::SelectNextWord, 12},
                             Step{QKeySequence::SelectEndOfDocument, 24}}) {
        QTest::keySequence(&pane, step.key);
        EXPECT_EQ(pane.selection().caret().position, step.caret) << "key " << step.key;
    }
    EXPECT_EQ(pane.selectedText(), u"\ngamma delta\n"_s);
}

TEST_F(OutputPaneTest, LeavesASelectionAtTheSideItGoesTo)
{
    run.append(u"alpha beta\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    const auto caretAfter = [this](QKeySequence::StandardKey key) {
        pane.select(2, 5);
        QTest::keySequence(&pane, key);
        EXPECT_TRUE(pane.selection().isEmpty());
        return pane.selection().caret().position;
    };
    EXPECT_EQ(caretAfter(QKeySequence::MoveToNextChar), 5);
    EXPECT_EQ(caretAfter(QKeySequence::MoveToPreviousChar), 2);
}

TEST_F(OutputPaneTest, FindsTheEndOfEveryLineAlsoOfTheEmptyLastOne)
{
    run.append(u"abc\r\n\nd\n"_s, OutputKind::out);
    const OutputPaneNavigation &navigation = pane.navigation();
    EXPECT_EQ(navigation.lineEnd(0).position, 3);
    EXPECT_EQ(navigation.lineEnd(3).position, 3);
    EXPECT_EQ(navigation.lineEnd(5).position, 5);
    EXPECT_EQ(navigation.lineEnd(6).position, 7);
    EXPECT_EQ(navigation.lineEnd(8).position, 8);
    run.append(u"unended"_s, OutputKind::out);
    EXPECT_EQ(navigation.lineEnd(9).position, 15);
}

TEST_F(OutputPaneTest, KeepsTheCaretInViewPageByPage)
{
    fill();
    const auto isInView = [this] {
        return pane.viewport()->rect().contains(pane.characterRect(pane.selection().caret().position).center());
    };
    QTest::keySequence(&pane, QKeySequence::MoveToStartOfDocument);
    EXPECT_EQ(pane.verticalScrollBar()->value(), 0);
    EXPECT_TRUE(isInView());
    TextStore::Position place = 0;
    for (int page = 0; page < 5; ++page) {
        QTest::keySequence(&pane, QKeySequence::MoveToNextPage);
        EXPECT_GT(pane.selection().caret().position, place);
        EXPECT_TRUE(isInView());
        place = pane.selection().caret().position;
    }
    EXPECT_GT(pane.verticalScrollBar()->value(), 0);
    for (int page = 0; page < 5; ++page)
        QTest::keySequence(&pane, QKeySequence::MoveToPreviousPage);
    EXPECT_EQ(pane.selection().caret().position, 0);
    EXPECT_EQ(pane.verticalScrollBar()->value(), 0);
    QTest::keySequence(&pane, QKeySequence::MoveToEndOfDocument);
    EXPECT_TRUE(isAtEnd());
}

TEST_F(OutputPaneTest, TakesTheCaretAlongOnlyFromTheEnd)
{
    run.append(u"first\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil([this] { return pane.selection().caret().position == 6; }));
    QTest::keySequence(&pane, QKeySequence::MoveToPreviousChar);
    run.append(u"second\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    EXPECT_EQ(pane.selection().caret().position, 5);
}

TEST_F(OutputPaneTest, StandsInTheEmptyLastLineWhenItWentThere)
{
    run.append(u"one\ntwo\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    QTest::keySequence(&pane, QKeySequence::MoveToStartOfDocument);
    QTest::keySequence(&pane, QKeySequence::MoveToNextLine);
    QTest::keySequence(&pane, QKeySequence::MoveToNextLine);
    QTest::keySequence(&pane, QKeySequence::MoveToEndOfLine);
    EXPECT_EQ(pane.selection().caret().position, 8);
    QTest::keySequence(&pane, QKeySequence::MoveToStartOfLine);
    EXPECT_EQ(pane.selection().caret().position, 8);
    QTest::keySequence(&pane, QKeySequence::MoveToNextLine);
    QTest::keySequence(&pane, QKeySequence::MoveToPreviousLine);
    EXPECT_EQ(pane.selection().caret().position, 4);
}

TEST_F(OutputPaneTest, MovesTheCaretByAPageLessTheRowThatStaysInView)
{
    fill();
    const auto line = [this] { return run.plainText().first(pane.selection().caret().position).count(u'\n'); };
    QTest::keySequence(&pane, QKeySequence::MoveToStartOfDocument);
    const int rowHeight = pane.characterRect(0).height();
    const int page = pane.viewport()->height() / rowHeight - 1;
    ASSERT_GT(page, 2);
    QTest::keySequence(&pane, QKeySequence::MoveToNextPage);
    EXPECT_EQ(line(), page);
    pane.setMinimumHeight(0);
    pane.resize(pane.width(), rowHeight + 6);
    QTest::keySequence(&pane, QKeySequence::MoveToNextPage);
    EXPECT_EQ(line(), page + 1) << "by one, where no more has room";
    QTest::keySequence(&pane, QKeySequence::MoveToPreviousPage);
    EXPECT_EQ(line(), page);
}

TEST_F(OutputPaneTest, KeepsItsKeysFromTheWindowsShortcutsAndLeavesItTheOthers)
{
    const auto takes = [this](QEvent::Type type, QKeyCombination keys) {
        QKeyEvent event(type, keys.key(), keys.keyboardModifiers());
        event.setAccepted(type == QEvent::KeyPress);
        QCoreApplication::sendEvent(&pane, &event);
        return event.isAccepted();
    };
    for (const QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress}) {
        for (const QKeySequence::StandardKey key :
             {QKeySequence::Copy, QKeySequence::SelectAll, QKeySequence::MoveToNextChar,
              QKeySequence::SelectPreviousPage, QKeySequence::MoveToEndOfDocument})
            EXPECT_TRUE(takes(type, QKeySequence(key)[0])) << "key " << key;
        for (const QKeySequence::StandardKey key : {QKeySequence::Find, QKeySequence::Close, QKeySequence::Save})
            EXPECT_FALSE(takes(type, QKeySequence(key)[0])) << "key " << key;
        EXPECT_FALSE(takes(type, QKeyCombination(Qt::Key_A)));
    }
}

TEST_F(OutputPaneTest, StandsAtTheEndOfARowThatWrapsUntilItIsMovedOn)
{
    run.append(QString(500, u'x') + u'\n', OutputKind::out);
    EXPECT_TRUE(waitUntil([this] { return pane.verticalScrollBar()->isVisible(); }));
    const TextStore::Position row = pane.navigation().rowAt(0).end;
    ASSERT_LT(3 * row, 500);
    struct Step {
        QKeySequence::StandardKey key;
        TextStore::Position caret;
    };
    for (const Step &step :
         {Step{QKeySequence::MoveToStartOfDocument, 0}, Step{QKeySequence::MoveToEndOfLine, row},
          Step{QKeySequence::MoveToEndOfLine, row}, Step{QKeySequence::MoveToStartOfLine, 0},
          Step{QKeySequence::MoveToEndOfLine, row}, Step{QKeySequence::MoveToNextLine, 2 * row},
          Step{QKeySequence::MoveToStartOfLine, row}, Step{QKeySequence::MoveToPreviousLine, 0},
          Step{QKeySequence::MoveToEndOfLine, row}, Step{QKeySequence::MoveToNextChar, row + 1},
          Step{QKeySequence::MoveToPreviousChar, row}, Step{QKeySequence::MoveToEndOfLine, 2 * row}}) {
        QTest::keySequence(&pane, step.key);
        EXPECT_EQ(pane.selection().caret().position, step.caret) << "key " << step.key;
    }
    EXPECT_EQ(pane.navigation().rowOf(pane.selection().caret()).index, 1) << "which is not the next one";
}
