#pragma once

// Reading valid UTF-8. Nothing here checks: the tool runner checks all that comes from outside, once (Utf8Repair.h).
// Pure functions.

#include <QByteArrayView>
#include <QString>
#include <QUtf8StringView>

#include <bit>
#include <cstdint>
#include <cstring>

namespace Utf8
{

/// True for a byte that is not the first of its code point.
inline bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
}

inline bool isAscii(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80U;
}

/// The bytes of the code point that begins with `lead`.
inline int lengthOf(char lead)
{
    const auto byte = static_cast<unsigned char>(lead);
    return byte < 0x80U ? 1 : byte < 0xe0U ? 2 : byte < 0xf0U ? 3 : 4;
}

/// The code point at `at`, which moves behind it.
inline char32_t next(QByteArrayView text, qsizetype &at)
{
    const auto byte = [&](qsizetype offset) { return static_cast<char32_t>(static_cast<unsigned char>(text[offset])); };
    const char32_t lead = byte(at);
    const int length = lengthOf(text[at]);
    char32_t character = length == 1 ? lead : lead & (0x7fU >> static_cast<unsigned>(length));
    for (int index = 1; index < length; ++index)
        character = (character << 6U) | (byte(at + index) & 0x3fU);
    at += length;
    return character;
}

/// How many bytes at the start are ASCII. Output of tools is mostly ASCII, so this decides how fast it is read: eight
/// bytes at a time.
inline qsizetype asciiPrefix(QByteArrayView text)
{
    constexpr qsizetype step = sizeof(std::uint64_t);
    qsizetype at = 0;
    for (; at + step <= text.size(); at += step) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, sizeof word);
        word &= 0x8080808080808080U;
        if (word == 0)
            continue;
        const int zeroBits =
            std::endian::native == std::endian::little ? std::countr_zero(word) : std::countl_zero(word);
        return at + zeroBits / 8;
    }
    while (at < text.size() && isAscii(text[at]))
        ++at;
    return at;
}

/// The text as a QString, a leading U+FEFF included, which QString::fromUtf8 and toString would drop.
QString toQString(QUtf8StringView text);

} // namespace Utf8
