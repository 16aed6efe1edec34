#include "Text/Utf8Repair.h"

#include "Text/Utf8.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace
{

constexpr std::array<char, 4> replacement{'\xEF', '\xBF', '\xBD', '\0'};
constexpr int replacementSize = 3;

/// What becomes of a byte that is decided by itself: ASCII, or no character and no beginning of one.
struct Alone {
    std::array<char, 4> text{};
    /// 0 for the first byte of a longer sequence.
    int size = 0;
};

// Bytes at random would have the processor guess wrongly at every second one: a table leaves little to guess.
constexpr auto aloneTable = [] {
    constexpr std::size_t firstLead = 0xc2;
    constexpr std::size_t lastLead = 0xf4;
    std::array<Alone, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        if (byte < 0x80)
            table[byte] = {{static_cast<char>(byte)}, 1};
        else if (byte < firstLead || byte > lastLead)
            table[byte] = {replacement, replacementSize};
    }
    return table;
}();

const Alone &aloneOf(char byte)
{
    return aloneTable[static_cast<unsigned char>(byte)];
}

/// Reads the sequence at `position`, which moves behind it; true when it is a character. Its first byte is not alone.
bool readSequence(QByteArrayView bytes, qsizetype &position)
{
    const bool isCut = position + 1 == bytes.size() || !Utf8::isContinuation(bytes[position + 1]);
    if (isCut) {
        ++position;
        return false;
    }
    UChar32 character = 0;
    // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): the macro is the library's
    U8_NEXT(reinterpret_cast<const std::uint8_t *>(bytes.data()), position, bytes.size(), character);
    return character >= 0;
}

/// Where the first malformed sequence begins; the end when there is none.
qsizetype validPrefix(QByteArrayView bytes)
{
    qsizetype position = Utf8::asciiPrefix(bytes);
    while (position < bytes.size()) {
        const qsizetype start = position;
        if (aloneOf(bytes[position]).size != 0 || !readSequence(bytes, position))
            return start;
        position += Utf8::asciiPrefix(bytes.sliced(position));
    }
    return position;
}

} // namespace

std::optional<QByteArray> Utf8Repair::repaired(QByteArrayView bytes)
{
    const qsizetype valid = validPrefix(bytes);
    if (valid == bytes.size())
        return std::nullopt;
    // Room for the worst at once, every byte malformed, and for writing four bytes where fewer count; only what was
    // written is kept.
    QByteArray room(valid + (bytes.size() - valid) * replacementSize + 4, Qt::Uninitialized);
    char *end = room.data();
    std::memcpy(end, bytes.data(), static_cast<std::size_t>(valid));
    end += valid;
    for (qsizetype position = valid; position < bytes.size();) {
        const qsizetype start = position;
        const Alone &alone = aloneOf(bytes[position]);
        if (alone.size != 0) {
            std::memcpy(end, alone.text.data(), alone.text.size());
            end += alone.size;
            ++position;
        } else if (readSequence(bytes, position)) {
            end = std::copy_n(bytes.data() + start, position - start, end);
        } else {
            end = std::copy_n(replacement.data(), replacementSize, end);
        }
    }
    return QByteArray(room.constData(), end - room.constData());
}
