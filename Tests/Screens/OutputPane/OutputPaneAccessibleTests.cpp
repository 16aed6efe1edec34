#include "OutputPaneTest.h"

#include "Look/Colours.h"
#include "Screens/ThreadTimer.h"

using namespace Qt::StringLiterals;

TEST_F(OutputPaneTest, IsAReadOnlyTextOfManyLinesForAssistiveTechnology)
{
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&pane);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->role(), QAccessible::EditableText);
    EXPECT_EQ(interface->text(QAccessible::Name), u"Output"_s);
    EXPECT_TRUE(interface->state().readOnly);
    EXPECT_TRUE(interface->state().multiLine);
    EXPECT_TRUE(interface->state().selectableText);
    EXPECT_TRUE(interface->state().focusable);
}

TEST_F(OutputPaneTest, SharesSelectionAndCaretWithAssistiveTechnology)
{
    run.append(u"\U0001F600 abc\n"_s, OutputKind::out);
    QAccessibleTextInterface *text = accessibleText();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->characterCount(), 7);
    EXPECT_EQ(text->selectionCount(), 0);
    text->addSelection(3, 6);
    EXPECT_EQ(pane.selectedText(), u"abc"_s);
    int start = -1;
    int end = -1;
    text->selection(0, &start, &end);
    EXPECT_EQ(start, 3);
    EXPECT_EQ(end, 6);
    EXPECT_EQ(text->cursorPosition(), 6);
    text->setSelection(0, 0, 2);
    EXPECT_EQ(pane.selectedText(), u"\U0001F600"_s);
    text->setSelection(1, 0, 6);
    text->removeSelection(1);
    EXPECT_EQ(pane.selectedText(), u"\U0001F600"_s) << "there is no second one";
    text->selection(1, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(0, 0));
    text->removeSelection(0);
    EXPECT_EQ(text->selectionCount(), 0);
    EXPECT_EQ(text->cursorPosition(), 2) << "where the caret was";
    text->selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(0, 0));
    text->setCursorPosition(4);
    EXPECT_EQ(text->cursorPosition(), 4);
    text->setCursorPosition(-1);
    EXPECT_EQ(text->cursorPosition(), 7);
    text->addSelection(-5, 100000);
    EXPECT_LE(pane.selectedText().size(), 7) << "places outside the text are brought into it";
}

TEST_F(OutputPaneTest, IsReadByCharactersWordsRowsAndLines)
{
    run.append(u"alpha beta\nsecond\n"_s, OutputKind::out);
    QAccessibleTextInterface *text = accessibleText();
    ASSERT_NE(text, nullptr);
    int start = 0;
    int end = 0;
    EXPECT_EQ(text->textAtOffset(7, QAccessible::CharBoundary, &start, &end), u"e"_s);
    EXPECT_EQ(text->textAtOffset(7, QAccessible::WordBoundary, &start, &end), u"beta"_s);
    EXPECT_EQ(start, 6);
    EXPECT_EQ(end, 10);
    EXPECT_EQ(text->textAtOffset(7, QAccessible::LineBoundary, &start, &end), u"alpha beta\n"_s);
    EXPECT_EQ(text->textAtOffset(12, QAccessible::ParagraphBoundary, &start, &end), u"second\n"_s);
    EXPECT_EQ(text->textAtOffset(12, QAccessible::NoBoundary, &start, &end), u"alpha beta\nsecond\n"_s);
    EXPECT_EQ(text->textBeforeOffset(12, QAccessible::LineBoundary, &start, &end), u"alpha beta\n"_s);
    EXPECT_EQ(text->textAfterOffset(7, QAccessible::LineBoundary, &start, &end), u"second\n"_s);
    EXPECT_EQ(text->textBeforeOffset(0, QAccessible::CharBoundary, &start, &end), QString());
    EXPECT_EQ(text->textAfterOffset(17, QAccessible::CharBoundary, &start, &end), QString());
    run.clearTranscript();
    EXPECT_EQ(text->textAtOffset(0, QAccessible::WordBoundary, &start, &end), QString());
    EXPECT_EQ(text->characterCount(), 0);
}

TEST_F(OutputPaneTest, TellsTheColourOfEachPiece)
{
    run.append(u"out"_s, OutputKind::out);
    run.append(u"error"_s, OutputKind::err);
    int start = 0;
    int end = 0;
    const QColor red = Colours::red(palette);
    EXPECT_EQ(accessibleText()->attributes(4, &start, &end),
              u"color:rgb(%1,%2,%3);"_s.arg(red.red()).arg(red.green()).arg(red.blue()));
    EXPECT_EQ(start, 3);
    EXPECT_EQ(end, 8);
    run.clearTranscript();
    EXPECT_EQ(accessibleText()->attributes(0, &start, &end), QString());
}

TEST_F(OutputPaneTest, TellsWhereEachCharacterIsOnTheScreen)
{
    fill();
    QAccessibleTextInterface *text = accessibleText();
    const int last = text->characterCount() - 2;
    EXPECT_EQ(text->offsetAtPoint(text->characterRect(last).center()), last);
    EXPECT_TRUE(text->characterRect(0).isNull()) << "far above the view";
    EXPECT_EQ(text->offsetAtPoint(pane.mapToGlobal(QPoint(-50, -50))), -1);
    text->scrollToSubstring(0, 1);
    EXPECT_EQ(text->offsetAtPoint(text->characterRect(0).center()), 0);
}

TEST_F(OutputPaneTest, HandsOutWhatIsNearTheViewWhereAllWouldBeTooMuch)
{
    using OutputPaneAccessible::readable;
    const auto bounds = [](OutputRange range) { return std::pair(range.begin, range.end); };
    EXPECT_EQ(bounds(readable({10, 110}, 5000, 100)), std::pair(TextStore::Position{10}, TextStore::Position{110}));
    EXPECT_EQ(bounds(readable({0, 1000}, 500, 100)), std::pair(TextStore::Position{450}, TextStore::Position{550}));
    EXPECT_EQ(bounds(readable({0, 1000}, 20, 100)), std::pair(TextStore::Position{0}, TextStore::Position{100}));
    EXPECT_EQ(bounds(readable({0, 1000}, 5000, 100)), std::pair(TextStore::Position{900}, TextStore::Position{1000}));
}

TEST_F(OutputPaneTest, AnswersForAHundredMebibytesInBoundedTime)
{
    const QByteArray line = QByteArray(79, 'x') + '\n';
    const QByteArray block = line.repeated(13'000);
    for (int count = 0; count < 100; ++count)
        run.append(QUtf8StringView(block), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    QAccessibleTextInterface *text = QAccessible::queryAccessibleInterface(&pane)->textInterface();
    // Another thread may be packing the text still.
    ThreadTimer time;
    time.start();
    const int count = text->characterCount();
    EXPECT_EQ(count, 100 * block.size());
    for (const int offset : {0, count / 2, count - 1}) {
        int start = 0;
        int end = 0;
        const QString row = text->textAtOffset(offset, QAccessible::LineBoundary, &start, &end);
        EXPECT_EQ(row.size(), end - start);
        EXPECT_FALSE(text->text(offset, offset + 100).isEmpty());
    }
    EXPECT_LT(time.elapsed(), 50);
    time.start();
    EXPECT_GT(text->text(0, count).size(), 0);
    EXPECT_LT(time.elapsed(), 2000) << "even for all of it at once";
}

TEST_F(OutputPaneTest, IsReadByTheRowAndByTheWholeLineWhereItWraps)
{
    const QString line(300, u'x');
    run.append(u"one two\n"_s + line + u"\nend"_s, OutputKind::out);
    QAccessibleTextInterface *text = accessibleText();
    const auto row = static_cast<int>(pane.navigation().rowAt(8).end) - 8;
    ASSERT_LT(2 * row, 300);
    struct Unit {
        int start = -1;
        int end = -1;
        QString text;
        bool operator==(const Unit &) const = default;
    };
    const auto at = [text](int offset, QAccessible::TextBoundaryType kind) {
        Unit unit;
        unit.text = text->textAtOffset(offset, kind, &unit.start, &unit.end);
        return unit;
    };
    const auto precedingAt = [text](int offset, QAccessible::TextBoundaryType kind) {
        Unit unit;
        unit.text = text->textBeforeOffset(offset, kind, &unit.start, &unit.end);
        return unit;
    };
    const auto followingAt = [text](int offset, QAccessible::TextBoundaryType kind) {
        Unit unit;
        unit.text = text->textAfterOffset(offset, kind, &unit.start, &unit.end);
        return unit;
    };
    const Unit second{8 + row, 8 + 2 * row, QString(row, u'x')};
    EXPECT_EQ(at(8 + row, QAccessible::LineBoundary), second);
    EXPECT_EQ(followingAt(8, QAccessible::LineBoundary), second);
    EXPECT_EQ(precedingAt(8 + 2 * row, QAccessible::LineBoundary), second);
    const Unit whole{8, 309, line + u'\n'};
    for (const auto kind : {QAccessible::SentenceBoundary, QAccessible::ParagraphBoundary}) {
        EXPECT_EQ(at(8 + row, kind), whole);
        EXPECT_EQ(followingAt(0, kind), whole);
        EXPECT_EQ(precedingAt(310, kind), whole);
    }
    EXPECT_EQ(at(7, QAccessible::WordBoundary), (Unit{7, 8, u"\n"_s})) << "a line end is read by itself";
    EXPECT_EQ(followingAt(0, QAccessible::WordBoundary), (Unit{3, 4, u" "_s}));
    EXPECT_EQ(precedingAt(4, QAccessible::WordBoundary), (Unit{3, 4, u" "_s}));
    EXPECT_EQ(precedingAt(1, QAccessible::WordBoundary), (Unit{0, 0, {}})) << "nothing before the first";
    EXPECT_EQ(followingAt(310, QAccessible::WordBoundary), (Unit{312, 312, {}})) << "nothing behind the last";
    EXPECT_EQ(precedingAt(1, QAccessible::CharBoundary), (Unit{0, 1, u"o"_s}));
    EXPECT_EQ(followingAt(310, QAccessible::CharBoundary), (Unit{311, 312, u"d"_s}));
}

TEST_F(OutputPaneTest, HandsOutTextBehindANulToAssistiveTechnology)
{
    run.append(QString(u"a\0b\n"_s), OutputKind::out);
    EXPECT_EQ(run.plainText().size(), 4);
    EXPECT_EQ(wholeAccessibleText(), u"a\ufffdb\n"_s) << "of the same length, for the offsets";
}
