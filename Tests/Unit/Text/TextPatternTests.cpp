#include "Text/TextPattern.h"

#include "Support/Printing.h"
#include "Support/Seed.h"

#include <QList>
#include <QStringList>

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace
{

std::vector<TextMatch> matches(const TextPattern &pattern, const QList<QByteArray> &pieces, std::int64_t position = 0)
{
    std::vector<TextMatch> found;
    TextMatcher matcher(pattern, position);
    for (const QByteArray &piece : pieces) {
        matcher.read(piece, [&](TextMatch match) {
            found.push_back(match);
            return true;
        });
    }
    return found;
}

/// The texts that were found, by their own bytes.
QStringList found(const QString &wanted, const QString &text, Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive)
{
    QStringList texts;
    const QByteArray bytes = text.toUtf8();
    for (const TextMatch &match : matches(TextPattern(wanted, sensitivity), {bytes}))
        texts.append(QString::fromUtf8(bytes.sliced(match.begin, match.end - match.begin)));
    return texts;
}

/// As Unicode's table has it, for the characters that the comparison uses.
QString foldedByHand(QString text)
{
    return text.replace(u'\u00df', u"ss"_s)
        .replace(u'\u1e9e', u"ss"_s)
        .replace(u'\u212a', u'k')
        .replace(u'\u0390', u"\u03b9\u0308\u0301"_s)
        .replace(u'\ufb01', u"fi"_s)
        .toLower();
}

/// What matches, found in the plainest way: every stretch of whole characters is compared by itself.
std::vector<TextMatch> matchesOneByOne(const QString &wanted, const QString &text, Qt::CaseSensitivity sensitivity)
{
    const auto form = [sensitivity](const QString &any) {
        return sensitivity == Qt::CaseSensitive ? any : foldedByHand(any);
    };
    std::vector<TextMatch> found;
    for (qsizetype begin = 0; begin < text.size(); ++begin) {
        for (qsizetype size = 1; size <= 6 * wanted.size() && begin + size <= text.size(); ++size) {
            const QString part = text.mid(begin, size);
            if (!part.isValidUtf16() || form(part) != form(wanted))
                continue;
            const std::int64_t position = text.first(begin).toUtf8().size();
            found.push_back({position, position + part.toUtf8().size()});
            begin += size - 1;
            break;
        }
    }
    return found;
}

} // namespace

TEST(TextPattern, FindsTextsThatDifferInCaseAlone)
{
    EXPECT_EQ(found(u"error"_s, u"Error: an ERROR, no terror"_s), QStringList({u"Error"_s, u"ERROR"_s, u"error"_s}));
    EXPECT_EQ(found(u"ÄRGER"_s, u"viel ärger"_s), QStringList({u"ärger"_s}));
    EXPECT_EQ(found(u"ΣΊΣΥΦΟΣ"_s, u"σίσυφος"_s), QStringList({u"σίσυφος"_s}));
    EXPECT_EQ(found(u"strasse"_s, u"Straße STRASSE STRAẞE"_s), QStringList({u"Straße"_s, u"STRASSE"_s, u"STRAẞE"_s}));
    EXPECT_EQ(found(u"Straße"_s, u"a strasse"_s), QStringList({u"strasse"_s}));
    EXPECT_EQ(found(u"5 kelvin"_s, u"5 \u212aELVIN"_s), QStringList({u"5 \u212aELVIN"_s})) << "three bytes for one";
    EXPECT_EQ(found(u"\u0390"_s, u"\u0399\u0308\u0301"_s), QStringList({u"\u0399\u0308\u0301"_s})) << "its capital";
    EXPECT_EQ(found(u"\U00010428"_s, u"x\U00010400y"_s), QStringList({u"\U00010400"_s}));
}

TEST(TextPattern, FindsExactlyWhatIsAskedForWhenCaseMatters)
{
    EXPECT_EQ(found(u"Error"_s, u"Error ERROR error"_s, Qt::CaseSensitive), QStringList({u"Error"_s}));
    EXPECT_TRUE(found(u"strasse"_s, u"Straße"_s, Qt::CaseSensitive).isEmpty());
    EXPECT_EQ(found(u"ß"_s, u"SSß"_s, Qt::CaseSensitive), QStringList({u"ß"_s}));
}

TEST(TextPattern, FindsNoPartOfACharacter)
{
    EXPECT_TRUE(found(u"s"_s, u"ß"_s).isEmpty());
    EXPECT_EQ(found(u"ss"_s, u"sßs"_s), QStringList({u"ß"_s})) << "not the first and a half";
    EXPECT_EQ(found(u"i"_s, u"İi"_s), QStringList({u"i"_s})) << "the other one is an i and a dot";
}

TEST(TextPattern, FindsNothingForAnEmptyTextOrHalfASurrogatePair)
{
    EXPECT_TRUE(TextPattern(QString(), Qt::CaseInsensitive).isEmpty());
    EXPECT_TRUE(found(QString(), u"any"_s).isEmpty());
    const QString half(QChar(0xd83d));
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseInsensitive, Qt::CaseSensitive}) {
        EXPECT_TRUE(found(half, u"?\U0001f600\ufffd"_s, sensitivity).isEmpty());
        EXPECT_TRUE(found(u"a"_s + half, u"a\U0001f600"_s, sensitivity).isEmpty());
    }
}

TEST(TextPattern, FindsTheSameHoweverTheTextIsCutIntoPieces)
{
    const QList<QString> characters{u"a"_s, u"A"_s, u"b"_s,      u"s"_s,      u"S"_s, u"ß"_s,          u"ẞ"_s,
                                    u"K"_s, u"k"_s, u"\u212a"_s, u"\u0390"_s, u"ﬁ"_s, u"\U0001f600"_s, u"\n"_s};
    std::mt19937 random(seedOr(11));
    const auto text = [&](std::uint64_t size, std::uint64_t variety) {
        QString result;
        while (static_cast<std::uint64_t>(result.size()) < size)
            result += characters[static_cast<qsizetype>(random() % variety)];
        return result;
    };
    for (int round = 0; round < 600; ++round) {
        const auto variety = static_cast<std::uint64_t>(round % 2 == 0 ? 3 : characters.size());
        const QString wanted = text(1 + random() % 5, variety);
        const QString whole = text(random() % 120, variety) + text(round % 3 == 0 ? 200 : 0, 2);
        const auto sensitivity = round % 4 < 2 ? Qt::CaseInsensitive : Qt::CaseSensitive;
        QList<QByteArray> pieces;
        for (qsizetype at = 0; at < whole.size();) {
            qsizetype size = std::min<qsizetype>(whole.size() - at, 1 + static_cast<qsizetype>(random() % 90));
            size += whole[at + size - 1].isHighSurrogate() ? 1 : 0;
            pieces.append(whole.mid(at, size).toUtf8());
            at += size;
        }
        EXPECT_EQ(matches(TextPattern(wanted, sensitivity), pieces), matchesOneByOne(wanted, whole, sensitivity))
            << "looked for " << wanted.toStdString() << " in " << whole.toStdString();
    }
}

TEST(TextPattern, CountsPositionsFromWhereTheTextStands)
{
    EXPECT_EQ(matches(TextPattern(u"b"_s, Qt::CaseInsensitive), {"ßab"}, 1000), (std::vector<TextMatch>{{1003, 1004}}));
}

TEST(TextPattern, TakesNoLongerForALongTextThatAlmostMatchesEverywhere)
{
    // One by one that would be 10^12 comparisons.
    const qsizetype size = 1024 * 1024;
    const TextPattern pattern(QString(size, u'a') + u'b', Qt::CaseInsensitive);
    EXPECT_TRUE(matches(pattern, {QByteArray(8 * size, 'A')}).empty());
    EXPECT_EQ(matches(pattern, {QByteArray(2 * size, 'A'), "B"}), (std::vector<TextMatch>{{size, 2 * size + 1}}));
}

TEST(TextPattern, TellsWhereTheNextMatchMayBegin)
{
    const TextPattern pattern(u"sst"_s, Qt::CaseInsensitive);
    TextMatcher matcher(pattern, 10);
    const auto none = [](TextMatch) { return true; };
    matcher.read("xyz", none);
    EXPECT_EQ(matcher.earliest(), 13);
    matcher.read("ß", none);
    EXPECT_EQ(matcher.earliest(), 13);
    matcher.read("x", none);
    EXPECT_EQ(matcher.earliest(), 16);
}
