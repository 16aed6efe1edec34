#include "Text/Utf8Repair.h"

#include <unicode/utf8.h>

#include <bit>
#include <cstdint>
#include <cstring>

namespace
{

constexpr std::uint64_t highBits = 0x8080808080808080U;

/// The first place from `position` on that is not plain ASCII, in words as long as there are whole ones. Output of
/// tools is mostly ASCII: this decides the speed.
qsizetype skipAscii(const char *data, qsizetype position, qsizetype size)
{
    constexpr qsizetype stride = sizeof(std::uint64_t);
    for (; position + stride <= size; position += stride) {
        std::uint64_t word = 0;
        std::memcpy(&word, data + position, stride);
        word &= highBits;
        if (word == 0)
            continue;
        const int zeroBits =
            std::endian::native == std::endian::little ? std::countr_zero(word) : std::countl_zero(word);
        return position + zeroBits / 8;
    }
    while (position < size && static_cast<signed char>(data[position]) >= 0)
        ++position;
    return position;
}

} // namespace

std::optional<QByteArray> repairedUtf8(QByteArrayView bytes)
{
    const char *data = bytes.data();
    const qsizetype size = bytes.size();
    std::optional<QByteArray> repaired;
    qsizetype taken = 0; // what is before it stands in `repaired`
    qsizetype position = skipAscii(data, 0, size);
    while (position < size) {
        const qsizetype start = position;
        UChar32 character = 0;
        // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): the macro is the library's
        U8_NEXT(reinterpret_cast<const std::uint8_t *>(data), position, size, character);
        if (character < 0) {
            if (!repaired) {
                repaired.emplace();
                repaired->reserve(size + size / 8);
            }
            repaired->append(data + taken, start - taken).append("\xEF\xBF\xBD", 3);
            taken = position;
        }
        if (position < size && static_cast<signed char>(data[position]) >= 0)
            position = skipAscii(data, position, size);
    }
    if (repaired)
        repaired->append(data + taken, size - taken);
    return repaired;
}
