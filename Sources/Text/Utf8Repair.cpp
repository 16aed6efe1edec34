#include "Text/Utf8Repair.h"

#include "Text/Utf8.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

namespace
{

constexpr std::size_t replacementSize = 3;
/// Two of U+FFFD, and two bytes more, so that they are written at once.
constexpr std::array<char, 8> replacements{'\xEF', '\xBF', '\xBD', '\xEF', '\xBF', '\xBD', '\0', '\0'};

/// So many bytes after one that is malformed, it is worth looking again whether only ASCII follows, which is quicker.
constexpr qsizetype bytesUntilAsciiAgain = 32;

/// What may follow of a sequence: so many bytes, of which behind some first bytes the next must be within narrower
/// bounds.
enum class State : std::uint8_t { nothing, one, two, three, oneAfterE0, oneAfterED, twoAfterF0, twoAfterF4 };
constexpr unsigned stateCount = 8;

/// The state behind a byte that follows no other; nothing also where it begins no sequence.
constexpr State stateAfterFirstByte(unsigned byte)
{
    switch (byte) {
    case 0xe0:
        return State::oneAfterE0;
    case 0xed:
        return State::oneAfterED;
    case 0xf0:
        return State::twoAfterF0;
    case 0xf4:
        return State::twoAfterF4;
    default:
        return byte < 0xc2 || byte > 0xf4 ? State::nothing
               : byte < 0xe0              ? State::one
               : byte < 0xf0              ? State::two
                                          : State::three;
    }
}

/// The state behind a byte that continues the sequence.
constexpr std::optional<State> stateAfterContinuation(State state, unsigned byte)
{
    const auto within = [byte](unsigned first, unsigned last, State next) {
        return first <= byte && byte <= last ? std::optional(next) : std::nullopt;
    };
    switch (state) {
    case State::nothing:
        return std::nullopt;
    case State::one:
        return within(0x80, 0xbf, State::nothing);
    case State::two:
        return within(0x80, 0xbf, State::one);
    case State::three:
        return within(0x80, 0xbf, State::two);
    case State::oneAfterE0:
        return within(0xa0, 0xbf, State::one);
    case State::oneAfterED:
        return within(0x80, 0x9f, State::one);
    case State::twoAfterF0:
        return within(0x90, 0xbf, State::two);
    case State::twoAfterF4:
        return within(0x80, 0x8f, State::two);
    }
}

/// What a byte does. One that does none of these is right by itself.
enum Effect : std::uint8_t { cutsOff = 1, isWrong = 2, continues = 4 };

/// Where the byte goes behind the replacements for what it cut off and for itself, and how many bytes all of it is. Of
/// a wrong one nothing is kept, so its place is behind the end.
struct Placement {
    std::uint8_t place;
    std::uint8_t size;
};
constexpr std::array<Placement, 8> placements = [] {
    std::array<Placement, 8> byEffect{};
    byEffect[0] = byEffect[continues] = {0, 1};
    byEffect[cutsOff] = {3, 4};
    byEffect[isWrong] = {3, 3};
    byEffect[cutsOff | isWrong] = {6, 6};
    return byEffect;
}();

// Bytes at random would have the processor guess wrongly at every second one, so nothing is guessed: the table has a
// number for each byte, and in it an entry of eight bits for each state: the effect, and behind it the next state,
// which so stands there eight times as large, as the shift that finds its entry. A shift is quicker than an index.
constexpr unsigned entryBits = 8;
constexpr unsigned effectBits = 3;
constexpr unsigned effectMask = 0x07;
constexpr unsigned shiftMask = 0x38;
static_assert(1U << effectBits == entryBits && stateCount * entryBits == 64);

constexpr auto table = [] {
    std::array<std::uint64_t, 256> entries{};
    for (unsigned byte = 0; byte < entries.size(); ++byte) {
        for (unsigned index = 0; index < stateCount; ++index) {
            const auto state = static_cast<State>(index);
            const std::optional<State> next = stateAfterContinuation(state, byte);
            unsigned effect = continues;
            if (!next) {
                const bool isRight = byte < 0x80 || stateAfterFirstByte(byte) != State::nothing;
                effect = (state != State::nothing ? cutsOff : 0) | (isRight ? 0 : isWrong);
            }
            const auto entry =
                (static_cast<std::uint64_t>(next.value_or(stateAfterFirstByte(byte))) << effectBits) | effect;
            entries[byte] |= entry << (index * entryBits);
        }
    }
    return entries;
}();

/// Where the first malformed sequence begins; the end when there is none.
qsizetype validPrefix(QByteArrayView bytes)
{
    qsizetype position = Utf8::asciiPrefix(bytes);
    while (position < bytes.size()) {
        const qsizetype start = position;
        UChar32 character = 0;
        // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): the macro is the library's
        U8_NEXT(reinterpret_cast<const std::uint8_t *>(bytes.data()), position, bytes.size(), character);
        if (character < 0)
            return start;
        position += Utf8::asciiPrefix(bytes.sliced(position));
    }
    return position;
}

} // namespace

std::optional<QByteArray> Utf8Repair::repaired(QByteArrayView bytes)
{
    QByteArray room;
    const std::optional<qsizetype> size = repairInto(room, bytes);
    if (!size)
        return std::nullopt;
    return QByteArray(room.constData(), *size); // only what counts is kept
}

std::optional<qsizetype> Utf8Repair::repairInto(QByteArray &room, QByteArrayView bytes)
{
    const qsizetype valid = validPrefix(bytes);
    if (valid == bytes.size())
        return std::nullopt;
    // For the worst, every byte malformed, and for what is written behind the end.
    const qsizetype most = valid + (bytes.size() - valid) * static_cast<qsizetype>(replacementSize) + 8;
    if (room.size() < most)
        room = QByteArray(most, Qt::Uninitialized);
    char *const begin = room.data();
    char *end = std::copy_n(bytes.data(), valid, begin);
    char *sequenceStart = end;
    unsigned shift = 0;
    for (qsizetype position = valid; position < bytes.size();) {
        const qsizetype ascii = Utf8::asciiPrefix(bytes.sliced(position));
        end = std::copy_n(bytes.data() + position, ascii, end);
        position += ascii;
        const qsizetype stretchEnd = std::min(position + bytesUntilAsciiAgain, bytes.size());
        for (; position < stretchEnd || (shift != 0 && position < bytes.size()); ++position) {
            const char byte = bytes[position];
            const auto entry = static_cast<unsigned>(table[static_cast<unsigned char>(byte)] >> shift);
            shift = entry & shiftMask;
            const unsigned effect = entry & effectMask;
            char *const at = (effect & cutsOff) != 0 ? sequenceStart : end;
            std::memcpy(at, replacements.data(), replacements.size());
            at[placements[effect].place] = byte;
            sequenceStart = (effect & continues) != 0 ? sequenceStart : at + placements[effect].place;
            end = at + placements[effect].size;
        }
    }
    if (shift != 0)
        end = std::copy_n(replacements.data(), replacementSize, sequenceStart);
    return end - begin;
}
