#include "HistoryStore/HistoryFile.h"

#include "Support/Printing.h"

#include <QTimeZone>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

HistoryEntry epoch()
{
    HistoryEntry entry;
    entry.date = QDateTime(QDate(1970, 1, 1), QTime(0, 0), QTimeZone::utc());
    return entry;
}

} // namespace

TEST(HistoryFile, SurvivesAMillionNestedBrackets)
{
    constexpr qsizetype depth = 1'000'000;
    EXPECT_EQ(HistoryFile::decode(QByteArray(depth, '[')), std::nullopt);
    EXPECT_EQ(HistoryFile::decode(QByteArray(depth, '[') + QByteArray(depth, ']')), std::nullopt);
    EXPECT_EQ(HistoryFile::decode(QByteArray("[{\"a\":").repeated(depth / 2)), std::nullopt);
}

TEST(HistoryFile, SeesBracketsInTextsAsText)
{
    HistoryEntry brackets = epoch();
    for (const QString &before : {QString(), u"x"_s, u"\""_s, u"x\""_s, u"\\"_s, u"x\\"_s, u"\\\""_s, u"x\\\""_s}) {
        brackets.command = before + QString(1000, u'[') + u"\"\\\""_s + QString(1000, u'{') + before;
        EXPECT_EQ(HistoryFile::decode(HistoryFile::encode({brackets, brackets})), (QList{brackets, brackets}))
            << before.toStdString();
    }
}

TEST(HistoryFile, IsReadUpToAHundredBracketsInBracketsHoweverManyStandSideBySide)
{
    const auto isReadWith = [](const QByteArray &extra) {
        QByteArray content = HistoryFile::encode({epoch()});
        return HistoryFile::decode(content.replace("\"note\":", "\"extra\":" + extra + ",\"note\":")).has_value();
    };
    // Two are around the member.
    EXPECT_TRUE(isReadWith(QByteArray(98, '[') + QByteArray(98, ']')));
    EXPECT_FALSE(isReadWith(QByteArray(99, '[') + QByteArray(99, ']')));
    EXPECT_TRUE(isReadWith("[" + QByteArray("[],{},").repeated(200) + "0]"));
}
