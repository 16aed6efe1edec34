#include "HistoryStore/HistoryEntry.h"

#include <QTimeZone>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

TEST(HistoryEntry, ComparesAndHashesAllSevenFields)
{
    const HistoryEntry entry{QUuid::createUuid(),
                             u"a"_s,
                             u"b"_s,
                             0,
                             u"c"_s,
                             QDateTime(QDate(2026, 3, 1), QTime(0, 0), QTimeZone::utc()),
                             1.5};
    const QList<std::function<void(HistoryEntry &)>> changes{
        [](HistoryEntry &other) { other.id = QUuid::createUuid(); },
        [](HistoryEntry &other) { other.command = u"z"_s; },
        [](HistoryEntry &other) { other.machine = u"z"_s; },
        [](HistoryEntry &other) { other.exitCode = 1; },
        [](HistoryEntry &other) { other.exitCode.reset(); },
        [](HistoryEntry &other) { other.note = u"z"_s; },
        [](HistoryEntry &other) { other.date = other.date.addSecs(1); },
        [](HistoryEntry &other) { other.duration = 2.5; },
    };
    for (const auto &change : changes) {
        HistoryEntry other = entry;
        change(other);
        EXPECT_NE(entry, other);
        EXPECT_NE(qHash(entry), qHash(other));
    }
    EXPECT_EQ(entry, HistoryEntry(entry));
    EXPECT_EQ(qHash(entry), qHash(HistoryEntry(entry)));
}
