#include "OutputPane/OutputPaneRow.h"

#include "Look/Typography.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

constexpr int columnsOfRow = 38;

class OutputPaneRowTest : public testing::Test
{
protected:
    OutputPaneRow row(const QString &text)
    {
        m_bytes = text.toUtf8();
        return {m_bytes, columnsOfRow, font};
    }

    /// The clusters that are shaped together, "0-3" for the first three; " " between two stretches.
    QString joined(const QString &text)
    {
        QStringList stretches;
        const OutputPaneRow laidOut = row(text);
        for (const OutputPaneRow::Joined &each : laidOut.joined())
            stretches.append(u"%1-%2"_s.arg(each.first).arg(each.end));
        return stretches.join(u' ');
    }

    const CellFont font{Typography::monospaced(12)};

private:
    QByteArray m_bytes;
};

} // namespace

TEST_F(OutputPaneRowTest, ShapesJoinedLettersTogetherToTheEndOfTheirStretch)
{
    // In memory, a shorter row lies where a longer one did, which must not be taken for a part of it.
    EXPECT_EQ(joined(u"\u0915\u0916\u0917\u0918"_s), u"0-4"_s);
    EXPECT_EQ(joined(u"\u0915\u0916\u0917"_s), u"0-3"_s);
    EXPECT_EQ(joined(u"a\u0915\u0916b\u0917"_s), u"1-3 4-5"_s);
    EXPECT_EQ(joined(u"abc"_s), QString());
}

TEST_F(OutputPaneRowTest, ShapesRightToLeftTextTogetherWithWhatStandsWithinIt)
{
    EXPECT_EQ(joined(u"\u05d0\u05d1\u05d2\u05d3"_s), u"0-4"_s);
    EXPECT_EQ(joined(u"\u05d0\u05d1\u05d2"_s), u"0-3"_s);
    EXPECT_EQ(joined(u"a \u05d0 1\u05d1 b"_s), u"2-6"_s) << "the blanks and digits between, not those around";
    for (const QChar letter : u"azAZ"_s)
        EXPECT_EQ(joined(u"\u05d0"_s + letter + u'\u05d1'), u"0-1 2-3"_s) << "a letter of the other direction parts it";
    EXPECT_EQ(joined(u"\u05d0 (\u05d1)."_s), u"0-5"_s) << "with the bracket that it opened";
    EXPECT_EQ(joined(u"\u05d0)"_s), u"0-1"_s) << "without one that it did not";
}

TEST_F(OutputPaneRowTest, EndsWhereItsTextDoesWhateverLiesBehindItInMemory)
{
    const QByteArray longer("abcdef\nghi");
    const auto endOf = [&](qsizetype size, qsizetype from, int width) {
        return OutputPaneRow::endOf(QByteArrayView(longer).first(size), from, width);
    };
    EXPECT_EQ(endOf(3, 0, 80), 3);
    EXPECT_EQ(endOf(6, 0, 80), 6) << "the line end behind it is not its own";
    EXPECT_EQ(endOf(7, 0, 80), 7);
    EXPECT_EQ(endOf(10, 7, 80), 10);
    EXPECT_EQ(endOf(10, 0, 3), 3);
    EXPECT_EQ(endOf(10, 3, 3), 7) << "a line that just fits takes its end with it";
}

TEST_F(OutputPaneRowTest, EndsBeforeWhatANamedCharacterLeavesNoRoomFor)
{
    for (const char control : {'\x01', '\x1f', '\x7f'}) // "^A", "^_", "^?"
        EXPECT_EQ(OutputPaneRow::endOf(QByteArray("ab") + control + "cd", 0, 4), 3) << static_cast<int>(control);
}

TEST_F(OutputPaneRowTest, EndsTabsAtMultiplesOfEightAndAtTheRowsEnd)
{
    const OutputPaneRow tabs = row(u"a\tb\t\t\t\t"_s);
    QList<int> places;
    for (const DisplayCluster &cluster : tabs.clusters())
        places.append(cluster.column);
    EXPECT_EQ(places, QList<int>({0, 1, 8, 9, 16, 24, 32}));
    EXPECT_EQ(tabs.clusters().back().cells, 6);
}

TEST_F(OutputPaneRowTest, FindsTheByteNearestToAPlaceAndThePlaceOfAByte)
{
    const OutputPaneRow text = row(u"ab\u4e2dd\n"_s);
    const double cell = font.cellWidth();
    EXPECT_EQ(text.xOf(0), 0);
    EXPECT_EQ(text.xOf(2), 2 * cell);
    EXPECT_EQ(text.xOf(5), 4 * cell) << "behind the wide one";
    EXPECT_EQ(text.xOf(7), 5 * cell) << "behind all of it";
    EXPECT_EQ(text.byteAt(2.9 * cell), 2) << "within the wide one";
    EXPECT_EQ(text.byteNearest(2.9 * cell), 2);
    EXPECT_EQ(text.byteNearest(3.1 * cell), 5);
    EXPECT_EQ(text.byteNearest(1000 * cell), 6) << "never behind the line end";
    EXPECT_EQ(text.endOfText(), 6);
    EXPECT_EQ(row(u"abc"_s).endOfText(), 3);
    EXPECT_EQ(row({}).endOfText(), 0);
}

TEST_F(OutputPaneRowTest, GivesEveryPlaceToTheCharacterThatBeginsThereAndItsMiddleToWhatIsBefore)
{
    const OutputPaneRow text = row(u"ab\u4e2dd\n"_s);
    const double cell = font.cellWidth();
    EXPECT_EQ(text.byteAt(-3), 0) << "left of it";
    EXPECT_EQ(text.byteAt(0), 0);
    EXPECT_EQ(text.byteAt(cell), 1);
    EXPECT_EQ(text.byteAt(2 * cell), 2);
    EXPECT_EQ(text.byteAt(4 * cell), 5);
    EXPECT_EQ(text.byteAt(5 * cell), 6) << "right of it the line end";
    EXPECT_EQ(text.byteNearest(-3), 0);
    EXPECT_EQ(text.byteNearest(cell / 2), 0);
    EXPECT_EQ(text.byteNearest(cell * 0.51), 1);
    EXPECT_EQ(text.byteNearest(3 * cell), 2) << "the middle of the wide one";
    EXPECT_EQ(text.extentOf(2).left, 2 * cell);
    EXPECT_EQ(text.extentOf(2).right, 4 * cell);
    EXPECT_EQ(text.extentOf(7).left, text.extentOf(7).right) << "nothing behind the last";
    EXPECT_EQ(row(u"ab"_s).byteAt(5 * cell), 1);
    EXPECT_EQ(row(u"ab"_s).byteNearest(5 * cell), 2);
    EXPECT_EQ(row({}).byteAt(0), 0);
    EXPECT_EQ(row({}).xOf(0), 0);
}

TEST_F(OutputPaneRowTest, PressesJoinedLettersIntoTheirCellsAndNeverSpreadsThem)
{
    for (const QString &text : {u"a\u05d0\u05d1\u05d2b"_s, u"\u0915\u0916\u0917"_s, u"\u0645\u0645\u0645"_s}) {
        const OutputPaneRow laidOut = row(text);
        ASSERT_EQ(laidOut.joined().size(), 1U);
        const OutputPaneRow::Joined &joined = laidOut.joined().front();
        const DisplayCluster &first = laidOut.clusters()[joined.first];
        const DisplayCluster &last = laidOut.clusters()[joined.end - 1];
        EXPECT_EQ(joined.x, first.column * font.cellWidth());
        EXPECT_DOUBLE_EQ(joined.width, (last.column + last.cells - first.column) * font.cellWidth());
        const double natural = joined.layout->lineAt(0).naturalTextWidth();
        EXPECT_DOUBLE_EQ(joined.scale * natural, std::min(natural, joined.width)) << text.toStdString();
    }
}
