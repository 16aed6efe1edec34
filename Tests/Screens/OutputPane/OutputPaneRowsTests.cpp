#include "OutputPane/OutputPaneRows.h"

#include "OutputPane/OutputPaneRow.h"
#include "Support/Waiting.h"
#include "Unit/Transcript/RandomText.h"
#include "Unit/Transcript/ViewedText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{

QList<QByteArray> rowsOf(const TextView &text, int columns)
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
    ViewedText text;
    text.append(bytes);
    return rowsOf(text, columns);
}

int cellsOf(const QByteArray &row, int columns)
{
    DisplayClusters clusters(row);
    DisplayCluster cluster;
    int column = 0;
    while (clusters.next(cluster) && OutputPaneRow::place(cluster, column, columns)) {
    }
    return column;
}

bool isOneCharacter(const QByteArray &row)
{
    DisplayClusters clusters(row);
    DisplayCluster cluster;
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
        ViewedText text;
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
        for (std::size_t index = 0; index < forth.size(); ++index) {
            EXPECT_EQ(grown.bytes(forth[index]).toByteArray(), rows[static_cast<qsizetype>(index)]);
            EXPECT_EQ(grown.at(grown.begin(forth[index])), forth[index]);
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
    ViewedText text;
    for (int line = 0; line < 100'000; ++line)
        text.append("a line of the usual length, as programs print them\n");
    OutputPaneRows rows(text);
    rows.setColumns(80);
    EXPECT_EQ(rows.estimateBefore({rows.last()}), 100'000);
    const OutputPaneRows::Place far = rows.atEstimate(54'321.25);
    EXPECT_EQ(rows.estimateBefore(far), 54'321.25);
    EXPECT_EQ(rows.begin(far.row), 54'321 * 51);
    EXPECT_EQ(far.part, 0.25);
}

TEST(OutputPaneRows, AreCountedExactlyAsLongAsLinesHaveNoMoreUnitsThanColumns)
{
    const auto estimateOf = [](const QByteArray &line) {
        ViewedText text;
        text.append(line.repeated(8000));
        OutputPaneRows rows(text);
        rows.setColumns(80);
        return rows.estimateBefore({rows.last()});
    };
    EXPECT_EQ(estimateOf(QByteArray(79, 'x') + "\r\n"), 8000);
    EXPECT_EQ(estimateOf(QByteArray("\u4e2d").repeated(40) + '\n'), 8000);
    EXPECT_GT(estimateOf(QByteArray(80, 'x') + "\r\n"), 8000) << "the carriage returns count, though nothing wraps";
}

TEST(OutputPaneRows, AreEstimatedInProportionToTheLengthOfLinesThatWrap)
{
    ViewedText text;
    text.append(QByteArray("short\n").repeated(200'000));
    const double before = 200'000;
    text.append(QByteArray(10'000'000, 'x'));
    OutputPaneRows rows(text);
    rows.setColumns(100);
    EXPECT_NEAR(rows.estimateBefore({rows.last()}), before + 100'000, 1500) << "whatever stands in other blocks";
    EXPECT_NEAR(static_cast<double>(rows.begin(rows.atEstimate(before + 50'000).row)), 1'200'000 + 5'000'000, 150'000);
}

TEST(OutputPaneRows, AreEstimatedToBeNeverFewerFurtherDownAndFoundAgain)
{
    RandomText random(6);
    ViewedText text(4);
    OutputPaneRows rows(text);
    for (int round = 0; round < 12; ++round) {
        // Up to half a gigabyte, so that several blocks are estimated as one.
        const int size = random.below(round > 8 ? 150'000'000 : 500'000);
        const int kind = random.below(3);
        text.append(kind == 0   ? QByteArray(size, 'l')
                    : kind == 1 ? (QByteArray(random.below(300), 'x') + '\n').repeated(size / 300)
                                : random.text(size / 1000).toUtf8());
        text.dropFront(text.lineBegin(text.begin() + random.below(100'000) % (text.end() - text.begin() + 1)));
        rows.setColumns(1 + random.below(200));
        if (rows.isEmpty())
            continue;
        std::vector<TextStore::Position> places;
        for (int sample = 0; sample < 300; ++sample) {
            const double part = random.below(1001) / 1000.0;
            places.push_back(text.begin() + static_cast<qint64>(part * static_cast<double>(text.end() - text.begin())));
        }
        std::sort(places.begin(), places.end());
        double last = 0;
        for (const TextStore::Position place : places) {
            const OutputPaneRows::Row row = rows.at(place);
            const double estimate = rows.estimateBefore({row});
            ASSERT_GE(estimate, last);
            ASSERT_GE(rows.estimateBefore({row, 0.5}), estimate);
            const OutputPaneRows::Place found = rows.atEstimate(estimate);
            ASSERT_NEAR(rows.estimateBefore(found), estimate, 1e-3);
            last = estimate;
        }
        EXPECT_EQ(rows.atEstimate(0).row, rows.first());
        EXPECT_EQ(rows.atEstimate(rows.estimateBefore({rows.last(), 1})).row, rows.last());
    }
}

TEST(OutputPaneRows, EndWhereAMissingBlockEnds)
{
    TextStorage storage;
    storage.plainBlocks = 4;
    storage.packedBytes = TextStorage::mebibyte;
    storage.folder = "/nowhere";
    ViewedText text(storage);
    RandomText random(7);
    QByteArray noise(TextStorage::mebibyte, Qt::Uninitialized);
    for (int pieces = 0; pieces < 8; ++pieces) {
        for (char &byte : noise)
            byte = static_cast<char>(' ' + random.below(64));
        noise[noise.size() - 1] = '\n';
        text.append(noise);
    }
    ASSERT_TRUE(waitUntil([&] { return text.loss().front > 0; }));
    ASSERT_TRUE(text.bytes(0).endsWith(" bytes of the output are missing here.\n"));
    OutputPaneRows rows(text);
    rows.setColumns(80);
    OutputPaneRows::Row row = rows.at(1000);
    EXPECT_EQ(row.block, 0);
    EXPECT_EQ(rows.end(row), text.block(0).end());
    EXPECT_LT(rows.bytes(row).size(), 80) << "one sentence";
    ASSERT_TRUE(rows.next(row));
    EXPECT_EQ(rows.begin(row), text.block(0).end());
}
