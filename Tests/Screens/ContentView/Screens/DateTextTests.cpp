#include "ContentView/Screens/DateText.h"

#include <QTimeZone>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

const QDateTime afternoon(QDate(2026, 3, 1), QTime(14, 5, 9), Qt::UTC);

// Releases of ICU differ in which blank they put where ("2:05 PM" with a narrow one), not in the words.
std::string textIn(const QByteArray &locale, const QDateTime &date = afternoon)
{
    QString text = DateText::mediumDateShortTime(date, locale);
    for (const char16_t blank : {u'\u00a0', u'\u202f', u'\u2009'})
        text.replace(QChar(blank), u' ');
    return text.toStdString();
}

} // namespace

TEST(DateText, WritesADateAsTheLanguageAndRegionDo)
{
    EXPECT_EQ(textIn("en_US"), "Mar 1, 2026, 2:05 PM");
    EXPECT_EQ(textIn("en_GB"), "1 Mar 2026, 14:05");
    EXPECT_EQ(textIn("de_DE"), "01.03.2026, 14:05");
    EXPECT_EQ(textIn("fr_FR"), "1 mars 2026, 14:05");
    EXPECT_EQ(textIn("ja_JP"), "2026/03/01 14:05");
    EXPECT_EQ(textIn("ru_RU"), "1 мар. 2026 г., 14:05");
    EXPECT_EQ(textIn("es_ES"), "1 mar 2026, 14:05");
    EXPECT_EQ(textIn("th_TH"), "1 มี.ค. 2569 14:05");
}

TEST(DateText, WritesTheHoursAsTheSystemIsSetTo)
{
    const auto textWith = [](const QByteArray &locale, const QString &format) {
        return textIn(DateText::withHourCycle(locale, format));
    };
    EXPECT_EQ(textWith("en-US", u"HH:mm"_s), "Mar 1, 2026, 14:05");
    EXPECT_EQ(textWith("en-US", u"h:mm AP"_s), "Mar 1, 2026, 2:05 PM");
    EXPECT_EQ(textWith("en_GB", u"h:mm ap"_s), "1 Mar 2026, 2:05 pm");
    EXPECT_EQ(textWith("en_GB", u"H:mm"_s), "1 Mar 2026, 14:05");
    EXPECT_EQ(textWith("de_DE", u"Ah:mm"_s), "01.03.2026, 2:05 PM");
    EXPECT_EQ(textWith("de_DE", u"HH:mm 'Uhr am Tag'"_s), "01.03.2026, 14:05") << "what is quoted is text";
    EXPECT_EQ(textWith("fr_CA", u"HH 'h' mm"_s), textIn("fr_CA"));
    EXPECT_NE(textWith("fr_CA", u"h 'h' mm AP"_s), textIn("fr_CA"));
    EXPECT_EQ(textWith("es_ES", u"H:mm"_s), textIn("es_ES"));
    EXPECT_NE(textWith("es_ES", u"h:mm AP"_s), textIn("es_ES"));
}

TEST(DateText, KeepsTheDigitsAndDirectionMarksOfAnArabicDate)
{
    const QString text = DateText::mediumDateShortTime(afternoon, "ar_EG");
    EXPECT_TRUE(text.contains(u"٠٣"_s)) << text.toStdString();
    EXPECT_TRUE(text.contains(u"٢٠٢٦"_s)) << text.toStdString();
    EXPECT_FALSE(text.contains(u"2026"_s));
}

TEST(DateText, ReadsEveryFormOfALocaleName)
{
    EXPECT_EQ(textIn("de_DE.UTF-8"), textIn("de_DE"));
    EXPECT_EQ(textIn("de-DE"), textIn("de_DE"));
    EXPECT_EQ(textIn("de_DE@euro"), textIn("de_DE"));
    EXPECT_EQ(textIn("en-GB"), textIn("en_GB"));
}

TEST(DateText, WritesAmericanEnglishWithoutALocale)
{
    for (const QByteArray &locale : {QByteArray(), QByteArray("C"), QByteArray("C.UTF-8"), QByteArray("POSIX")})
        EXPECT_EQ(textIn(locale), textIn("en_US")) << locale.toStdString();
}

TEST(DateText, WritesSomethingInALocaleNobodyKnows)
{
    EXPECT_FALSE(textIn("xx_YY").empty());
    EXPECT_FALSE(textIn("not a locale at all").empty());
}

TEST(DateText, ShowsTheClockOfTheZoneThatTheDateCarries)
{
    EXPECT_EQ(textIn("en_GB", afternoon.toOffsetFromUtc(5 * 3600 + 1800)), "1 Mar 2026, 19:35");
    EXPECT_EQ(textIn("en_GB", afternoon.toOffsetFromUtc(-15 * 3600)), "28 Feb 2026, 23:05");
    EXPECT_EQ(textIn("en_GB", afternoon.toTimeZone(QTimeZone("Europe/Berlin"))), "1 Mar 2026, 15:05");
    const QDateTime summer(QDate(2026, 7, 1), QTime(12, 0), Qt::UTC);
    EXPECT_EQ(textIn("en_GB", summer.toTimeZone(QTimeZone("Europe/Berlin"))), "1 Jul 2026, 14:00");
}

TEST(DateText, WritesDatesFarAwayAndNoInvalidOne)
{
    EXPECT_EQ(textIn("en_GB", QDateTime(QDate(1969, 12, 31), QTime(23, 59, 59), Qt::UTC)), "31 Dec 1969, 23:59");
    EXPECT_EQ(textIn("en_GB", QDateTime(QDate(9999, 12, 31), QTime(0, 0), Qt::UTC)), "31 Dec 9999, 00:00");
    EXPECT_EQ(textIn("en_GB", QDateTime()), "");
}

TEST(DateText, TakesTheLocaleOfDatesFromTheEnvironment)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "on macOS the system's settings decide";
#endif
    qunsetenv("LC_ALL");
    qunsetenv("LC_TIME");
    qputenv("LANG", "en_US.UTF-8");
    EXPECT_EQ(DateText::userLocale(), "en_US.UTF-8");
    qputenv("LC_TIME", "de_DE.UTF-8");
    EXPECT_EQ(DateText::userLocale(), "de_DE.UTF-8");
    qputenv("LC_ALL", "fr_FR.UTF-8");
    EXPECT_EQ(DateText::userLocale(), "fr_FR.UTF-8");
}
