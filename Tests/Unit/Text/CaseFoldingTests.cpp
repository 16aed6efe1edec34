#include "Text/CaseFolding.h"

#include "Support/Printing.h"
#include "Text/Utf8.h"

#include <gtest/gtest.h>

#include <unicode/unistr.h>

using namespace Qt::StringLiterals;

namespace
{

struct Folded {
    explicit Folded(const QByteArray &text) { CaseFolding::fold(text, bytes, changes); }

    QByteArray bytes;
    std::vector<CaseFolding::Change> changes;
};

/// As Unicode's own library has it.
QByteArray foldedByIcu(const QString &text)
{
    icu::UnicodeString characters(reinterpret_cast<const char16_t *>(text.utf16()), static_cast<int>(text.size()));
    characters.foldCase();
    return QStringView(characters.getBuffer(), characters.length()).toUtf8();
}

} // namespace

TEST(CaseFolding, LowersTheLettersOfAsciiAndNothingBesideWhereverTheyStand)
{
    QByteArray ascii;
    QByteArray lowered;
    for (char character = 0x20; character < 0x7f; ++character) {
        ascii += character;
        lowered += character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
    }
    for (int before = 0; before < 130; ++before) {
        const Folded folded(QByteArray(before, 'Z') + ascii);
        EXPECT_EQ(folded.bytes, QByteArray(before, 'z') + lowered) << before;
        EXPECT_TRUE(folded.changes.empty());
        EXPECT_EQ(Folded(QByteArray(before, 'Z') + "\u00d6" + ascii).bytes,
                  QByteArray(before, 'z') + "\u00f6" + lowered);
    }
    EXPECT_EQ(Folded(QByteArray()).bytes, QByteArray());
}

TEST(CaseFolding, FoldsEveryCharacterAsUnicodeDoesAndTellsWhereOneBecomesLongerOrShorter)
{
    constexpr char32_t last = 0x10ffff;
    constexpr char32_t atOnce = 1024;
    for (char32_t first = 0x80; first <= last; first += atOnce) {
        QString text;
        for (char32_t character = first; character < first + atOnce && character <= last; ++character) {
            if (character < 0xd800 || character > 0xdfff)
                text += QChar::fromUcs4(character);
        }
        const QByteArray bytes = text.toUtf8();
        const Folded folded(bytes);
        ASSERT_EQ(folded.bytes, foldedByIcu(text)) << std::hex << std::uint32_t{first};
        std::int64_t difference = 0; // between a place in the text and the same in its folded form
        for (const CaseFolding::Change &change : folded.changes) {
            ASSERT_EQ(change.foldedBegin - change.begin, difference);
            qsizetype at = change.begin;
            Utf8::next(bytes, at);
            ASSERT_EQ(change.end, at) << "one character";
            const QByteArray one = folded.bytes.sliced(change.foldedBegin, change.foldedEnd - change.foldedBegin);
            ASSERT_EQ(one, foldedByIcu(QString::fromUtf8(bytes.sliced(change.begin, change.end - change.begin))));
            difference = change.foldedEnd - change.end;
        }
        ASSERT_EQ(folded.bytes.size() - bytes.size(), difference);
    }
}

TEST(CaseFolding, TellsOfACharacterThatBecomesTwoOfTheSameLengthTogether)
{
    const Folded folded("a\u00dfb");
    EXPECT_EQ(folded.bytes, "assb");
    ASSERT_EQ(folded.changes.size(), 1U);
    EXPECT_EQ(folded.changes[0].foldedBegin, 1);
    EXPECT_EQ(folded.changes[0].foldedEnd, 3);
    EXPECT_EQ(folded.changes[0].begin, 1);
    EXPECT_EQ(folded.changes[0].end, 3);
}
