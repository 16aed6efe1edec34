#include "OutputPaneTest.h"

#include "Text/Utf8.h"

using namespace Qt::StringLiterals;

namespace
{

using Position = TextStore::Position;

/// All that navigation says of one position, counted from `begin`.
std::vector<Position> saidOf(OutputPane &pane, Position position, Position begin)
{
    const OutputPaneNavigation &navigation = pane.navigation();
    const OutputRange word = navigation.wordAt(position);
    const OutputRange row = navigation.rowAt(position);
    const OutputRange line = navigation.lineAt(position);
    std::vector<Position> said{navigation.nextCharacter(position),
                               navigation.previousCharacter(position),
                               navigation.nextWord(position),
                               navigation.previousWord(position),
                               navigation.rowBegin({position, false}).position,
                               navigation.rowEnd({position, false}).position,
                               navigation.lineEnd(position).position,
                               word.begin,
                               word.end,
                               row.begin,
                               row.end,
                               line.begin,
                               line.end};
    for (Position &each : said)
        each -= begin;
    return said;
}

} // namespace

TEST_F(OutputPaneTest, IsWalkedThroughFarIntoATextAsAtItsStart)
{
    const QString sample =
        u"first\nA word,  two_words!\r\n\n\tcaf\u00e9 \u4e2d\u6587 e\u0301x (\u05d0\u05d1) \u0915\u094d\u0937\n"_s +
        u"a row that goes on and on and on "_s.repeated(12) + u"\nlast\n"_s;
    const QByteArray bytes = sample.toUtf8();
    RunController far;
    OutputPane farPane(far, far.transcript().text());
    farPane.resize(pane.size());
    farPane.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&farPane));
    far.append(u"0123456789 abcde\n"_s.repeated(20'000), OutputKind::out);
    const Position begin = far.transcript().end();
    ASSERT_GT(far.transcript().text().blockAt(begin), 1) << "in another block than the text's start";
    far.append(sample, OutputKind::out);
    run.append(sample, OutputKind::out);
    const Position second = bytes.indexOf('\n') + 1;
    const Position last = bytes.lastIndexOf("last");
    for (Position at = second; at < last; ++at) {
        if (!Utf8::isContinuation(bytes[at])) {
            EXPECT_EQ(saidOf(farPane, begin + at, begin), saidOf(pane, at, 0)) << "at " << at;
        }
    }
}

TEST_F(OutputPaneTest, StaysWithinItsTextAtBothItsEnds)
{
    run.append(u"one two\nlast"_s, OutputKind::out);
    const OutputPaneNavigation &navigation = pane.navigation();
    EXPECT_EQ(navigation.previousCharacter(0), 0);
    EXPECT_EQ(navigation.previousWord(0), 0);
    EXPECT_EQ(navigation.previousWord(1), 0);
    EXPECT_EQ(navigation.previousWord(4), 0);
    EXPECT_EQ(navigation.previousWord(5), 4);
    EXPECT_EQ(navigation.nextWord(0), 4);
    EXPECT_EQ(navigation.nextWord(4), 7) << "before the line end";
    EXPECT_EQ(navigation.nextWord(7), 8) << "behind it";
    EXPECT_EQ(navigation.previousWord(8), 7);
    EXPECT_EQ(navigation.nextWord(8), 12);
    EXPECT_EQ(navigation.nextWord(12), 12);
    EXPECT_EQ(navigation.nextCharacter(12), 12);
    EXPECT_EQ(navigation.previousCharacter(12), 11);
    EXPECT_EQ(navigation.lineEnd(9).position, 12);
    EXPECT_EQ(navigation.lineEnd(0).position, 7);
}

TEST_F(OutputPaneTest, LeavesTheCaretWhereTheUserPutItWhileMoreComes)
{
    fill();
    const auto isAtEnd = [this] { return pane.selection().caret().position == run.transcript().end(); };
    EXPECT_TRUE(waitUntil(isAtEnd)) << "it goes with the end from the first";
    QTest::keySequence(&pane, QKeySequence::MoveToStartOfDocument);
    const int before = pane.verticalScrollBar()->maximum();
    run.append(u"one more\n"_s, OutputKind::out);
    ASSERT_TRUE(waitUntil([&] { return pane.verticalScrollBar()->maximum() > before; }));
    EXPECT_EQ(pane.selection().caret().position, run.transcript().begin());
    QTest::keySequence(&pane, QKeySequence::MoveToEndOfDocument);
    run.append(u"and one more\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil(isAtEnd));
}

TEST_F(OutputPaneTest, PutsTheCaretAtTheEndAgainWhenItIsCleared)
{
    run.append(u"one\ntwo\n"_s, OutputKind::out);
    ASSERT_TRUE(showsEnd());
    QTest::keySequence(&pane, QKeySequence::MoveToStartOfDocument);
    run.clearTranscript();
    run.append(u"three\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil([this] { return pane.selection().caret().position == run.transcript().end(); }));
}

TEST_F(OutputPaneTest, TakesLettersDigitsMarksAndUnderscoresForAWordAndSignsAndBlanksForThemselves)
{
    struct Case {
        QString text;
        int at;
        QString word;
    };
    for (const auto &[text, at, word] :
         {Case{u"two_words2 x"_s, 1, u"two_words2"_s}, Case{u"two_words2 x"_s, 3, u"two_words2"_s},
          Case{u"two_words2 x"_s, 9, u"two_words2"_s}, Case{u"cafe\u0301s-x"_s, 0, u"cafe\u0301s"_s},
          Case{u"a+=b"_s, 1, u"+="_s}, Case{u"a+=b"_s, 0, u"a"_s}, Case{u"a+=b"_s, 3, u"b"_s},
          Case{u"\u4e2d\u6587!"_s, 3, u"\u4e2d\u6587"_s}, Case{u"a \t b"_s, 2, u" \t "_s},
          Case{u"a\u00a0b"_s, 0, u"a"_s}, Case{u"a\u00a0 b"_s, 1, u"\u00a0 "_s}, Case{u"one\r\n"_s, 3, {}},
          Case{u"one\r\n"_s, 4, {}}}) {
        run.clearTranscript();
        const Position begin = run.transcript().end();
        run.append(text, OutputKind::out);
        const OutputRange found = pane.navigation().wordAt(begin + at);
        EXPECT_EQ(pane.text().text(found.begin, found.end), word) << text.toStdString() << " at " << at;
    }
}
