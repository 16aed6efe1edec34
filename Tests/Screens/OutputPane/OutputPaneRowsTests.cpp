#include "OutputPane/OutputPaneRows.h"

#include "OutputPane/OutputPaneRowBreak.h"
#include "Unit/Transcript/RandomText.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::StringLiterals;

namespace
{

QList<QByteArray> rowsOf(const TextStore &text, int columns)
{
    OutputPaneRows rows(text);
    rows.setColumns(columns);
    QList<QByteArray> found;
    if (rows.isEmpty())
        return found;
    OutputPaneRows::Row row = rows.first();
    do
        found.append(rows.bytes(row).toByteArray());
    while (rows.next(row));
    return found;
}

QList<QByteArray> rowsOf(QByteArrayView bytes, int columns)
{
    TextStore text;
    text.append(bytes);
    return rowsOf(text, columns);
}

int cellsOf(const QByteArray &row, int columns)
{
    OutputPaneClusters clusters(row);
    OutputCluster cluster;
    int column = 0;
    while (clusters.next(cluster) && OutputPaneRowBreak::place(cluster, column, columns)) {
    }
    return column;
}

bool isOneCharacter(const QByteArray &row)
{
    OutputPaneClusters clusters(row);
    OutputCluster cluster;
    clusters.next(cluster);
    return cluster.size == row.size();
}

} // namespace

TEST(OutputPaneRows, WrapAtTheColumnsAndEndAtLineEnds)
{
    EXPECT_EQ(rowsOf("abcdef\ngh", 4), QList<QByteArray>({"abcd", "ef\n", "gh"}));
    EXPECT_EQ(rowsOf("abcd\n", 4), QList<QByteArray>({"abcd\n", ""})) << "a line that just fits has one row";
    EXPECT_EQ(rowsOf("a\r\nb\rc", 4), QList<QByteArray>({"a\r\n", "b\rc"})) << "a lone CR is shown by its name";
    EXPECT_EQ(rowsOf("a\tb", 8), QList<QByteArray>({"a\t", "b"}));
    EXPECT_EQ(rowsOf("a\u4e2d\u4e2d", 4), QList<QByteArray>({"a\u4e2d", "\u4e2d"})) << "never half a character";
    EXPECT_EQ(rowsOf("\u202e!", 3), QList<QByteArray>({"\u202e", "!"})) << "wider than the pane, and a row of its own";
    EXPECT_EQ(rowsOf("", 4), QList<QByteArray>());
}

TEST(OutputPaneRows, HoldTheWholeTextInRowsThatFitHoweverItArrived)
{
    RandomText random(5);
    for (const int columns : {1, 7, 40}) {
        const QString whole = random.text(3000);
        TextStore text;
        OutputPaneRows grown(text);
        grown.setColumns(columns);
        for (const QByteArray &chunk : random.chunks(whole, 50)) {
            text.append(chunk);
            if (!grown.isEmpty())
                grown.last(); // looks at what is there, and has to go on from it
        }
        const QList<QByteArray> rows = rowsOf(text, columns);
        EXPECT_EQ(rows.join(), whole.toUtf8());
        for (qsizetype index = 0; index < rows.size(); ++index) {
            EXPECT_TRUE(cellsOf(rows[index], columns) <= columns || isOneCharacter(rows[index]));
            EXPECT_TRUE(!rows[index].isEmpty() || index + 1 == rows.size());
        }
        std::vector<OutputPaneRows::Row> forth;
        OutputPaneRows::Row row = grown.first();
        do
            forth.push_back(row);
        while (grown.next(row));
        ASSERT_EQ(static_cast<qsizetype>(forth.size()), rows.size());
        EXPECT_EQ(grown.count(), rows.size());
        for (std::size_t index = 0; index < forth.size(); ++index) {
            EXPECT_EQ(grown.bytes(forth[index]).toByteArray(), rows[static_cast<qsizetype>(index)]);
            EXPECT_EQ(grown.at(grown.begin(forth[index])), forth[index]);
            EXPECT_EQ(grown.countBefore(forth[index]), static_cast<qint64>(index));
            EXPECT_EQ(grown.atCount(static_cast<qint64>(index)), forth[index]);
        }
        EXPECT_EQ(grown.last(), forth.back());
        for (std::size_t index = forth.size() - 1; index > 0; --index) {
            EXPECT_TRUE(grown.previous(row));
            EXPECT_EQ(row, forth[index - 1]);
        }
        EXPECT_FALSE(grown.previous(row));
    }
}

TEST(OutputPaneRows, AreCountedExactlyWithoutBeingLookedAtWhereNothingWraps)
{
    TextStore text;
    for (int line = 0; line < 100'000; ++line)
        text.append("a line of the usual length, as programs print them\n");
    OutputPaneRows rows(text);
    rows.setColumns(80);
    EXPECT_EQ(rows.count(), 100'001);
    const OutputPaneRows::Row far = rows.atCount(54'321);
    EXPECT_EQ(rows.countBefore(far), 54'321);
    EXPECT_EQ(rows.begin(far), 54'321 * 51);
}
