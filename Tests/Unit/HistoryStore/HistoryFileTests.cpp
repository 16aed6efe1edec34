#include "HistoryStore/HistoryFile.h"

#include <QElapsedTimer>
#include <QLocale>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace
{

QDateTime utc(int year, int month, int day, int hour, int minute, int second, int millisecond = 0)
{
    return {QDate(year, month, day), QTime(hour, minute, second, millisecond), QTimeZone::utc()};
}

HistoryEntry entry()
{
    return {QUuid(u"{3f9a0c11-2b3c-4d5e-8f60-718293a4b5c6}"_s),
            u"uname -a"_s,
            u"dev"_s,
            0,
            QString(),
            utc(2026, 3, 1, 14, 5, 9),
            3.25};
}

/// The file's content for one entry, in which one member stands as `text`; an empty text leaves the member out.
QByteArray fileWith(const QByteArray &key, const QByteArray &text)
{
    QByteArray object;
    for (const auto &[name, value] :
         std::initializer_list<std::pair<QByteArray, QByteArray>>{{"id", "\"3F9A0C11-2B3C-4D5E-8F60-718293A4B5C6\""},
                                                                  {"command", "\"uname -a\""},
                                                                  {"machine", "\"dev\""},
                                                                  {"exitCode", "0"},
                                                                  {"note", "\"\""},
                                                                  {"date", "\"2026-03-01T14:05:09Z\""},
                                                                  {"duration", "3.25"}}) {
        const QByteArray &shown = name == key ? text : value;
        if (!shown.isEmpty())
            object += (object.isEmpty() ? "\"" : ",\"") + name + "\":" + shown;
    }
    return "[{" + object + "}]";
}

bool isRefusedWith(const QByteArray &key, const QByteArray &text)
{
    return !HistoryFile::decode(fileWith(key, text)).has_value();
}

} // namespace

TEST(HistoryFile, IsReadUpToItsLargestSize)
{
    EXPECT_EQ(HistoryFile::largestSize, 67'108'864);
    QByteArray content = "[]" + QByteArray(HistoryFile::largestSize - 2, ' ');
    EXPECT_EQ(HistoryFile::decode(content), QList<HistoryEntry>());
    content += ' ';
    EXPECT_EQ(HistoryFile::decode(content), std::nullopt);
}

TEST(HistoryFile, IsCompactWithItsMembersInOrder)
{
    EXPECT_EQ(HistoryFile::encode({entry()}),
              "[{\"id\":\"3F9A0C11-2B3C-4D5E-8F60-718293A4B5C6\",\"command\":\"uname -a\",\"machine\":\"dev\","
              "\"exitCode\":0,\"note\":\"\",\"date\":\"2026-03-01T14:05:09Z\",\"duration\":3.25}]");
    EXPECT_EQ(HistoryFile::encode({}), "[]");
}

TEST(HistoryFile, ReadsBackWhatItWrote)
{
    HistoryEntry other = entry();
    other.id = QUuid::createUuid();
    other.command = u"echo \"a\\b\"\n\t\u00e9 \U0001f600 \u202e </script> \u0000 end"_s;
    other.machine = u"\ufeffdev"_s;
    other.note = u"timed out"_s;
    other.exitCode = std::numeric_limits<std::int64_t>::min();
    HistoryEntry third = entry();
    third.exitCode = std::nullopt;
    third.duration = 0.1 + 0.2;
    const QList<HistoryEntry> entries{entry(), other, third};
    EXPECT_EQ(HistoryFile::decode(HistoryFile::encode(entries)), entries);
    EXPECT_EQ(HistoryFile::decode("[]"), QList<HistoryEntry>());
}

TEST(HistoryFile, LeavesOutAnAbsentExitCodeAndReadsAMissingOrNullOne)
{
    HistoryEntry unfinished = entry();
    unfinished.exitCode = std::nullopt;
    EXPECT_FALSE(HistoryFile::encode({unfinished}).contains("exitCode"));
    EXPECT_EQ(HistoryFile::decode(fileWith("exitCode", "")), QList{unfinished});
    EXPECT_EQ(HistoryFile::decode(fileWith("exitCode", "null")), QList{unfinished});
}

TEST(HistoryFile, WritesDatesInUtcAndWholeSeconds)
{
    HistoryEntry late = entry();
    late.date = utc(2026, 3, 1, 14, 5, 9, 999);
    EXPECT_TRUE(HistoryFile::encode({late}).contains("\"2026-03-01T14:05:09Z\""));
    late.date = QDateTime(QDate(2026, 3, 1), QTime(1, 0), QTimeZone(2 * 3600));
    EXPECT_TRUE(HistoryFile::encode({late}).contains("\"2026-02-28T23:00:00Z\""));
}

TEST(HistoryFile, DoesNotDependOnTheLocale)
{
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    const QByteArray content = HistoryFile::encode({entry()});
    EXPECT_EQ(HistoryFile::decode(content), QList{entry()});
    QLocale::setDefault(QLocale::system());
    EXPECT_TRUE(content.contains("2026-03-01T14:05:09Z") && content.contains("3.25"));
}

TEST(HistoryFile, NeverWritesWhatItCouldNotRead)
{
    HistoryEntry strange = entry();
    strange.command = u"half "_s + QChar(0xd800) + u" and "_s + QChar(0xdc00) + QChar(0xd83d);
    strange.date = QDateTime();
    strange.duration = std::numeric_limits<double>::quiet_NaN();
    HistoryEntry farAway = entry();
    farAway.date = utc(12000, 1, 1, 0, 0, 0);
    farAway.duration = std::numeric_limits<double>::infinity();
    HistoryEntry longAgo = entry();
    longAgo.date = utc(-5, 1, 1, 0, 0, 0);
    longAgo.duration = std::numeric_limits<double>::max();
    const std::optional<QList<HistoryEntry>> read =
        HistoryFile::decode(HistoryFile::encode({strange, entry(), farAway, longAgo}));
    ASSERT_TRUE(read && read->size() == 4);
    EXPECT_EQ(read->at(1), entry());
    EXPECT_TRUE(read->at(0).command.startsWith(u"half "_s));
    for (const qsizetype odd : {0, 2, 3})
        EXPECT_EQ(read->at(odd).date, utc(1970, 1, 1, 0, 0, 0)) << odd;
    EXPECT_EQ(read->at(0).duration, 0);
    EXPECT_EQ(read->at(2).duration, 0);
    EXPECT_EQ(read->at(3).duration, std::numeric_limits<double>::max());
}

TEST(HistoryFile, KeepsTheFirstAndTheLastMomentThatItsFormCanTell)
{
    for (const QDateTime &date : {utc(1, 1, 1, 0, 0, 0), utc(9999, 12, 31, 23, 59, 59)}) {
        HistoryEntry extreme = entry();
        extreme.date = date;
        EXPECT_EQ(HistoryFile::decode(HistoryFile::encode({extreme})), QList{extreme});
    }
}

TEST(HistoryFile, AcceptsMembersInAnyOrderAndOthersBeside)
{
    EXPECT_EQ(HistoryFile::decode(" [ { \"duration\" : 3.25, \"note\":\"\", \"extra\": [1,{}],"
                                  "\"date\":\"2026-03-01T14:05:09Z\", \"exitCode\":0, \"machine\":\"dev\","
                                  "\"id\":\"3F9A0C11-2B3C-4D5E-8F60-718293A4B5C6\", \"command\":\"uname -a\" } ]\n"),
              QList{entry()});
}

TEST(HistoryFile, RefusesEveryMissingMemberButTheExitCode)
{
    EXPECT_TRUE(HistoryFile::decode(fileWith("exitCode", "")).has_value());
    for (const char *key : {"id", "command", "machine", "note", "date", "duration"})
        EXPECT_TRUE(isRefusedWith(key, "")) << key;
}

TEST(HistoryFile, RefusesEveryWrongType)
{
    for (const char *key : {"id", "command", "machine", "note", "date"}) {
        for (const char *value : {"null", "1", "true", "[]", "{}", "[\"a\"]"})
            EXPECT_TRUE(isRefusedWith(key, value)) << key << " as " << value;
    }
    for (const char *value : {"\"1\"", "true", "[]", "{}", "1.5", "1.0", "1e2", "9223372036854775808", "1e999"})
        EXPECT_TRUE(isRefusedWith("exitCode", value)) << value;
    for (const char *value : {"null", "\"1\"", "true", "[]", "1e999", "NaN", "+1", "01", ".5"})
        EXPECT_TRUE(isRefusedWith("duration", value)) << value;
}

TEST(HistoryFile, AcceptsEveryNumberOfSecondsAndEveryIntegerOf64Bits)
{
    EXPECT_EQ(HistoryFile::decode(fileWith("duration", "3"))->first().duration, 3.0);
    EXPECT_EQ(HistoryFile::decode(fileWith("duration", "-0.5"))->first().duration, -0.5);
    EXPECT_EQ(HistoryFile::decode(fileWith("duration", "18446744073709551615"))->first().duration,
              18446744073709551615.0);
    EXPECT_EQ(HistoryFile::decode(fileWith("exitCode", "9223372036854775807"))->first().exitCode,
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(HistoryFile::decode(fileWith("exitCode", "-1"))->first().exitCode, -1);
}

TEST(HistoryFile, RefusesEveryDateThatIsNotInItsForm)
{
    for (const char *date : {"",
                             "2026-03-01",
                             "2026-03-01T14:05:09",
                             "2026-03-01T14:05:09.5Z",
                             "2026-03-01T14:05:09+00:00",
                             "2026-03-01 14:05:09Z",
                             "2026-03-01T14:05:09z",
                             "2026-03-01t14:05:09Z",
                             " 2026-03-01T14:05:09Z",
                             "2026-03-01T14:05:09Z ",
                             "2026-03-01T14:05:09Z\\n",
                             "2026-3-1T14:05:09Z",
                             "2026-02-29T14:05:09Z",
                             "2026-13-01T14:05:09Z",
                             "2026-00-01T14:05:09Z",
                             "2026-03-32T14:05:09Z",
                             "2026-03-01T24:00:00Z",
                             "2026-03-01T23:60:00Z",
                             "2026-03-01T23:59:60Z",
                             "20260301T140509Z",
                             "12026-03-01T14:05:09Z",
                             "-026-03-01T14:05:09Z",
                             "\u0662\u0660\u0662\u0666-03-01T14:05:09Z",
                             "0000-01-01T00:00:00Z"})
        EXPECT_TRUE(isRefusedWith("date", "\"" + QByteArray(date) + "\"")) << date;
    EXPECT_FALSE(isRefusedWith("date", "\"2028-02-29T23:59:59Z\""));
}

TEST(HistoryFile, RefusesEveryIdThatIsNoUuid)
{
    for (const char *id : {"", "x", "3F9A0C11-2B3C-4D5E-8F60-718293A4B5C", "3F9A0C112B3C4D5E8F60718293A4B5C6",
                           "{3F9A0C11-2B3C-4D5E-8F60-718293A4B5C6}", "3F9A0C11-2B3C-4D5E-8F60-718293A4B5C6\\n",
                           "3F9A0C11-2B3C-4D5E-8F60-718293A4B5CG"})
        EXPECT_TRUE(isRefusedWith("id", "\"" + QByteArray(id) + "\"")) << id;
    EXPECT_EQ(HistoryFile::decode(fileWith("id", "\"3f9a0c11-2b3c-4d5e-8f60-718293a4b5c6\"")), QList{entry()})
        << "letter case does not make it another id";
}

TEST(HistoryFile, IsAllOrNothing)
{
    const QByteArray good = HistoryFile::encode({entry()}).chopped(1);
    for (const char *rest : {",{}]", ",1]", ",null]", ",[]]", ",]", "", "]]", "] x"})
        EXPECT_EQ(HistoryFile::decode(good + rest), std::nullopt) << rest;
    for (const char *content : {"", " ", "{}", "null", "\"\"", "5", "[", "\xff", "[\"\xff\"]"})
        EXPECT_EQ(HistoryFile::decode(content), std::nullopt) << content;
    EXPECT_EQ(HistoryFile::decode(QByteArray(1, '\0')), std::nullopt);
}

TEST(HistoryFile, RefusesTextThatIsNotUtf8)
{
    for (const char *bytes : {"\xff", "\xc3", "\xed\xa0\x80", "\xc0\x80", "\xf5\x80\x80\x80"})
        EXPECT_TRUE(isRefusedWith("command", "\"" + QByteArray(bytes) + "\""));
    EXPECT_TRUE(isRefusedWith("command", "\"\\ud800\""));
    EXPECT_TRUE(isRefusedWith("command", "\"\\ud800\\u0041\""));
}

TEST(HistoryFile, CutAnywhereIsRefused)
{
    const QByteArray content = HistoryFile::encode({entry(), entry()});
    for (qsizetype length = 0; length < content.size(); ++length)
        EXPECT_EQ(HistoryFile::decode(content.first(length)), std::nullopt) << length;
}

TEST(HistoryFile, WithAnyByteChangedLoadsWholeOrNotAtAll)
{
    const QByteArray content = HistoryFile::encode({entry(), entry()});
    int loaded = 0;
    for (qsizetype at = 0; at < content.size(); ++at) {
        for (const int change : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xff}) {
            QByteArray damaged = content;
            damaged[at] = static_cast<char>(damaged[at] ^ change);
            const std::optional<QList<HistoryEntry>> entries = HistoryFile::decode(damaged);
            if (!entries)
                continue;
            ++loaded;
            EXPECT_EQ(entries->size(), 2) << at << ' ' << change;
            EXPECT_EQ(HistoryFile::decode(HistoryFile::encode(*entries)), entries) << at << ' ' << change;
        }
    }
    EXPECT_GT(loaded, 0) << "another letter in a command is no damage that can be seen";
}

TEST(HistoryFile, IsUnreadableWhereAnythingStandsBehindANul)
{
    EXPECT_EQ(HistoryFile::decode(QByteArray("[]\0[]", 5)), std::nullopt);
}

TEST(HistoryFile, LeavesOutAnEntryWithWhichItWouldBeTooLargeToBeRead)
{
    HistoryEntry large = entry();
    large.command = QString(1000, u'x');
    const QByteArray one = HistoryFile::encode({entry()});
    EXPECT_EQ(HistoryFile::encode({entry(), large, entry()}, 1000), HistoryFile::encode({entry(), entry()}));
    EXPECT_EQ(HistoryFile::encode({entry(), entry()}, one.size()), one);
    EXPECT_EQ(HistoryFile::encode({entry(), entry()}, one.size() - 1), "[]");
    EXPECT_EQ(HistoryFile::encode({entry(), entry()}, 2 * one.size() - 1), HistoryFile::encode({entry(), entry()}));
}
