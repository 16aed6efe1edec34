#include "HistoryStore/HistoryFile.h"

#include <QTimeZone>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

/// The run that began in that minute.
HistoryEntry run(int minute)
{
    HistoryEntry entry;
    entry.id = QUuid(static_cast<uint>(minute), 0, 0, 0, 0, 0, 0, 0, 0, 0, 1);
    entry.date = QDateTime(QDate(2026, 3, 1), QTime(0, 0), QTimeZone::utc()).addSecs(60LL * minute);
    return entry;
}

QList<HistoryEntry> runs(std::initializer_list<int> minutes)
{
    QList<HistoryEntry> entries;
    for (const int minute : minutes)
        entries.append(run(minute));
    return entries;
}

} // namespace

TEST(HistoryMerge, BringsInWhatTheOtherAddedNewestFirst)
{
    EXPECT_EQ(HistoryFile::merged(runs({5, 2, 1}), runs({2, 1}), runs({6, 4, 3, 2, 1})), runs({6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(HistoryFile::merged({}, {}, runs({2, 1})), runs({2, 1}));
    EXPECT_EQ(HistoryFile::merged(runs({2, 1}), {}, {}), runs({2, 1}));
}

TEST(HistoryMerge, LetsNoDeletedEntryComeBackWhoeverDeletedIt)
{
    EXPECT_EQ(HistoryFile::merged(runs({3, 1}), runs({3, 2, 1}), runs({4, 3, 2, 1})), runs({4, 3, 1}))
        << "deleted here";
    EXPECT_EQ(HistoryFile::merged(runs({4, 3, 2, 1}), runs({3, 2, 1}), runs({3, 1})), runs({4, 3, 1})) << "and there";
    EXPECT_EQ(HistoryFile::merged({}, runs({2, 1}), runs({3, 2, 1})), runs({3})) << "all that were known here";
    EXPECT_EQ(HistoryFile::merged(runs({3, 2, 1}), runs({2, 1}), {}), runs({3})) << "all that were known there";
}

TEST(HistoryMerge, TakesAnEntryThatBothHaveOnce)
{
    EXPECT_EQ(HistoryFile::merged(runs({3, 2, 1}), runs({1}), runs({3, 1})), runs({3, 2, 1}));
}

TEST(HistoryMerge, KeepsTheOrderOfRunsWhoseClockWasSetBack)
{
    EXPECT_EQ(HistoryFile::merged(runs({2, 9, 1}), {}, runs({5})), runs({5, 2, 9, 1}));
}

TEST(HistoryMerge, KeepsTheNewest50)
{
    QList<HistoryEntry> ours;
    QList<HistoryEntry> theirs;
    for (int minute = 98; minute >= 0; minute -= 2) {
        ours.append(run(minute));
        theirs.append(run(minute + 1));
    }
    const QList<HistoryEntry> all = HistoryFile::merged(ours, {}, theirs);
    ASSERT_EQ(all.size(), 50);
    EXPECT_EQ(all.first(), run(99));
    EXPECT_EQ(all.last(), run(50));
}
