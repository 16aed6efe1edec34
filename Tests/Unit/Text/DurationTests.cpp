#include "Text/Duration.h"

#include <QTimeZone>

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

using namespace Qt::StringLiterals;

TEST(Duration, HasOneDecimalAndItsUnit)
{
    EXPECT_EQ(Duration::text(0.04), u"0.0s"_s);
    EXPECT_EQ(Duration::text(59.96), u"60.0s"_s);
    EXPECT_EQ(Duration::text(3.2), u"3.2s"_s);
    EXPECT_EQ(Duration::text(0), u"0.0s"_s);
    EXPECT_EQ(Duration::text(0.25), u"0.2s"_s);
    EXPECT_EQ(Duration::text(0.35), u"0.3s"_s);
    EXPECT_EQ(Duration::text(12345.678), u"12345.7s"_s);
    EXPECT_EQ(Duration::text(-1.5), u"-1.5s"_s);
    EXPECT_EQ(Duration::text(1e300).size(), 304);
    EXPECT_TRUE(Duration::text(std::numeric_limits<double>::max()).endsWith(u".0s"_s));
}

TEST(Duration, HasAPointInEveryLocale)
{
    const char *german = std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ(Duration::text(3.2), u"3.2s"_s);
    std::setlocale(LC_ALL, "C");
    if (german == nullptr)
        GTEST_SKIP() << "no locale with a decimal comma is installed here";
}

TEST(Duration, IsNeverNegativeHoweverTheClockWasSet)
{
    const QDateTime noon(QDate(2026, 3, 1), QTime(12, 0), QTimeZone::utc());
    EXPECT_EQ(Duration::between(noon, noon.addMSecs(3250)), 3.25);
    EXPECT_EQ(Duration::between(noon, noon.addMSecs(-300)), 0);
}
