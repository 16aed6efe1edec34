#include "Text/Utf8Repair.h"

#include "Text/Utf8.h"

#include <unicode/utf8.h>

#include <cstdint>

std::optional<QByteArray> Utf8Repair::repaired(QByteArrayView bytes)
{
    const char *data = bytes.data();
    const qsizetype size = bytes.size();
    std::optional<QByteArray> copy;
    qsizetype taken = 0; // what is before it stands in `copy`
    qsizetype position = Utf8::asciiPrefix(bytes);
    while (position < size) {
        const qsizetype start = position;
        UChar32 character = 0;
        // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): the macro is the library's
        U8_NEXT(reinterpret_cast<const std::uint8_t *>(data), position, size, character);
        if (character < 0) {
            if (!copy) {
                copy.emplace();
                copy->reserve(size + size / 8);
            }
            copy->append(data + taken, start - taken).append("\xEF\xBF\xBD", 3);
            taken = position;
        }
        if (position < size && Utf8::isAscii(data[position]))
            position += Utf8::asciiPrefix(bytes.sliced(position));
    }
    if (copy)
        copy->append(data + taken, size - taken);
    return copy;
}
