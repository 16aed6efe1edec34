#include "Text/CaseFolding.h"

#include "Text/Utf8.h"

#include <unicode/uchar.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>

#include <QString>

#include <algorithm>
#include <array>

namespace
{

/// Case folding makes at most three characters of one, and three times its bytes.
constexpr int mostUnits = 8;
constexpr qsizetype mostGrowth = 3;

/// So many bytes are folded in one go, with the processor's wide registers.
constexpr qsizetype foldedAtOnce = 64;

using Units = std::array<char16_t, mostUnits>;

/// The folding of a text that is one character.
QStringView folding(QStringView character, Units &units)
{
    UErrorCode error = U_ZERO_ERROR;
    const int count = u_strFoldCase(units.data(), mostUnits, character.utf16(), static_cast<int>(character.size()),
                                    U_FOLD_CASE_DEFAULT, &error);
    return {units.data(), count};
}

/// The characters that folding changes: a bit for each, because nearly all of a text has to be looked up.
class ChangingCharacters
{
public:
    ChangingCharacters()
    {
        UErrorCode error = U_ZERO_ERROR;
        // Not the property of that name: it is about the decomposed character, and so leaves out those whose folding is
        // their decomposition.
        const USet *const cased = u_getBinaryPropertySet(UCHAR_CASED, &error);
        // Without the library's data only ASCII is folded.
        const int ranges = U_SUCCESS(error) ? uset_getItemCount(cased) : 0;
        for (int range = 0; range < ranges; ++range) {
            UChar32 first = 0;
            UChar32 last = 0;
            if (uset_getItem(cased, range, &first, &last, nullptr, 0, &error) != 0)
                break;
            for (UChar32 character = first; character <= last; ++character)
                noteIfChanged(static_cast<char32_t>(character));
        }
    }

    bool contain(char32_t character) const { return (m_bits[character / bits] >> (character % bits) & 1U) != 0; }

private:
    void noteIfChanged(char32_t character)
    {
        const auto text = QChar::fromUcs4(character);
        Units units{};
        if (folding(text, units) != QStringView(text))
            m_bits[character / bits] |= std::uint64_t{1} << (character % bits);
    }

    static constexpr std::size_t bits = 64;

    std::array<std::uint64_t, 0x110000 / bits> m_bits{};
};

/// Writes the ASCII characters at the start of a text; how many there are, or `foldedAtOnce` if there are more.
qsizetype foldAscii(QByteArrayView text, char *out)
{
    const auto lowered = [](char byte) {
        return static_cast<char>(byte + (static_cast<unsigned char>(byte - 'A') < 26 ? 'a' - 'A' : 0));
    };
    if (text.size() < foldedAtOnce) {
        const qsizetype count = Utf8::asciiPrefix(text);
        std::transform(text.begin(), text.begin() + count, out, lowered);
        return count;
    }
    unsigned char any = 0;
    for (qsizetype index = 0; index < foldedAtOnce; ++index) {
        any |= static_cast<unsigned char>(text.data()[index]);
        out[index] = lowered(text.data()[index]);
    }
    return Utf8::isAscii(static_cast<char>(any)) ? foldedAtOnce : Utf8::asciiPrefix(text);
}

QByteArray folded(char32_t character)
{
    Units units{};
    return folding(QChar::fromUcs4(character), units).toUtf8();
}

} // namespace

void CaseFolding::fold(QByteArrayView text, QByteArray &folded, std::vector<Change> &changes)
{
    static const ChangingCharacters changing;
    folded.resize(mostGrowth * text.size());
    char *out = folded.data();
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype ascii = foldAscii(text.sliced(at), out);
        at += ascii;
        out += ascii;
        while (at < text.size() && !Utf8::isAscii(text[at])) {
            const qsizetype begin = at;
            const char32_t character = Utf8::next(text, at);
            if (!changing.contain(character)) {
                out = std::copy(text.data() + begin, text.data() + at, out);
                continue;
            }
            const QByteArray bytes = ::folded(character);
            const std::int64_t foldedBegin = out - folded.data();
            out = std::copy(bytes.cbegin(), bytes.cend(), out);
            if (bytes.size() != at - begin || bytes.size() != Utf8::lengthOf(bytes[0]))
                changes.push_back({foldedBegin, out - folded.data(), begin, at});
        }
    }
    folded.truncate(out - folded.data());
}
