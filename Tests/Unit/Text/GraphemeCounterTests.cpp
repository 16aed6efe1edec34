#include "Text/GraphemeCounter.h"

#include "Unit/Transcript/RandomText.h"

#include <gtest/gtest.h>

#include <unicode/brkiter.h>
#include <unicode/locid.h>

#include <chrono>
#include <limits>
#include <memory>

using namespace Qt::StringLiterals;

namespace
{

constexpr int unlimited = std::numeric_limits<int>::max();

int countInOne(const QString &text)
{
    GraphemeCounter counter(unlimited);
    counter.add(text.toUtf8());
    return counter.count();
}

int countInPieces(const QList<QByteArray> &pieces)
{
    GraphemeCounter counter(unlimited);
    for (const QByteArray &piece : pieces)
        counter.add(piece);
    return counter.count();
}

int countByIcu(const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    const icu::UnicodeString characters(reinterpret_cast<const char16_t *>(text.utf16()),
                                        static_cast<int>(text.size()));
    iterator->setText(characters);
    int count = 0;
    while (iterator->next() != icu::BreakIterator::DONE)
        ++count;
    return count;
}

} // namespace

TEST(GraphemeCounter, CountsWhatAReaderCallsOneCharacterAsOne)
{
    EXPECT_EQ(countInOne(QString()), 0);
    EXPECT_EQ(countInOne(u"plain"_s), 5);
    EXPECT_EQ(countInOne(u"a\r\nb\r\n"_s), 4);
    EXPECT_EQ(countInOne(u"\r\r\n\n"_s), 3);
    EXPECT_EQ(countInOne(u"e\u0301"_s), 1);
    EXPECT_EQ(countInOne(u"\u1112\u1161\u11ab"_s), 1);
    EXPECT_EQ(countInOne(u"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7\U0001F1EE"_s), 3);
    EXPECT_EQ(countInOne(u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s), 1);
    EXPECT_EQ(countInOne(u"\U0001F44D\U0001F3FD"_s), 1);
}

TEST(GraphemeCounter, CountsIndicConsonantsThatAreWrittenAsOneAsOne)
{
    EXPECT_EQ(countInOne(u"\u0915\u094d\u0937"_s), 1);
    EXPECT_EQ(countInOne(u"\u0915\u094d\u200d\u0937"_s), 1);
    EXPECT_EQ(countInOne(u"\u0915\u093c\u094d\u0937\u094d\u092f\u093e"_s), 1) << "of any number";
    EXPECT_EQ(countInOne(u"\u0915\u094d\u200c\u0937"_s), 2) << "held apart on purpose";
    EXPECT_EQ(countInOne(u"\u0915\u0937"_s), 2);
    for (const QString &conjunct :
         {u"\u0a95\u0acd\u0ab7"_s, u"\u0b15\u0b4d\u0b37"_s, u"\u0c15\u0c4d\u0c37"_s, u"\u0d15\u0d4d\u0d37"_s})
        EXPECT_EQ(countInOne(conjunct), 1) << conjunct.toStdString();
    EXPECT_EQ(countInOne(u"\u0915\u093e\u094d\u0937"_s), 2);
    EXPECT_EQ(countInOne(u"\u0b95\u0bcd\u0bb7"_s), 2) << "Tamil writes them side by side";
    EXPECT_EQ(countInPieces({"\u0995", "\u09cd", "\u09b7"}), 1);
    EXPECT_EQ(countInPieces({"\u0995\u09cd", "a", "\u09b7"}), 3);
}

TEST(GraphemeCounter, JoinsCharactersThatAreCutBetweenChunks)
{
    EXPECT_EQ(countInPieces({"e", "\u0301", "\u0308"}), 1);
    EXPECT_EQ(countInPieces({"line\r", "\nnext\r", "", "\n"}), 10);
    EXPECT_EQ(countInPieces({"\U0001F1E9", "\U0001F1EA", "\U0001F1EB", "\U0001F1F7"}), 2);
    EXPECT_EQ(countInPieces({"\U0001F468", "\u200D", "\U0001F469", "\u200D\U0001F467"}), 1);
    EXPECT_EQ(countInPieces({"\u200D", "\U0001F469"}), 2);
}

TEST(GraphemeCounter, ReadsNothingBeyondTheEndOfAPiece)
{
    for (const QByteArrayView whole : {QByteArrayView("ab\r\ncd\r\n"), QByteArrayView("\r\n\r\n\r\n"),
                                       QByteArrayView("a\r\r\n\n\r\nb"), QByteArrayView("x\u00e9\r\ny\r\n")}) {
        for (qsizetype size = 0; size <= whole.size(); ++size) {
            if (size < whole.size() && (static_cast<unsigned char>(whole[size]) & 0xc0U) == 0x80U)
                continue;
            GraphemeCounter counter(unlimited);
            counter.add(whole.first(size));
            EXPECT_EQ(counter.count(), countByIcu(QString::fromUtf8(whole.first(size)))) << size;
            counter.add(whole.sliced(size));
            EXPECT_EQ(counter.count(), countByIcu(QString::fromUtf8(whole))) << size;
        }
    }
}

TEST(GraphemeCounter, AgreesWithIcuForRandomTextInRandomChunks)
{
    RandomText random(7);
    for (int round = 0; round < 3000; ++round) {
        const QString text = random.text(random.below(60));
        const int expected = countByIcu(text);
        EXPECT_EQ(countInOne(text), expected) << text.toUtf8().toHex(' ').toStdString();
        EXPECT_EQ(countInPieces(random.chunks(text, 5)), expected) << text.toUtf8().toHex(' ').toStdString();
    }
}

TEST(GraphemeCounter, StopsCountingAtItsLimit)
{
    GraphemeCounter counter(10);
    counter.add("12345678");
    EXPECT_EQ(counter.count(), 8);
    counter.add("90123");
    EXPECT_EQ(counter.count(), 10);
    counter.add("x\u00e9x");
    EXPECT_EQ(counter.count(), 10);
}

TEST(GraphemeCounter, ReadsAPileOfAccentsOnlyOnceHoweverItIsCut)
{
    GraphemeCounter counter(unlimited);
    counter.add("e");
    const QByteArray accent("\u0301");
    const auto start = std::chrono::steady_clock::now();
    for (int index = 0; index < 500'000; ++index)
        counter.add(accent);
    EXPECT_EQ(counter.count(), 1);
    // Reading again what came before would take hours.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}
