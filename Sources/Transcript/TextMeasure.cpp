#include "Transcript/TextMeasure.h"

#include "Text/Utf8.h"

#include <array>
#include <cstring>

namespace
{

/// The next line feed or `end`. Looks at a few bytes itself first: for very short lines a call costs more than the
/// search.
const char *lineFeedIn(const char *from, const char *end)
{
    const char *const near = from + std::min<std::ptrdiff_t>(end - from, 8);
    for (; from < near; ++from) {
        if (*from == '\n')
            return from;
    }
    const void *const found = std::memchr(from, '\n', static_cast<std::size_t>(end - from));
    return found ? static_cast<const char *>(found) : end;
}

/// True when there is nothing but printable ASCII and line feeds. Without a branch, so that many bytes go at once.
bool isPlain(QByteArrayView text)
{
    unsigned char special = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isSpecial = byte >= 0x7fU || (byte < 0x20U && byte != '\n');
        special = static_cast<unsigned char>(special | static_cast<unsigned char>(isSpecial));
    }
    return special == 0;
}

/// A stretch without a line feed.
struct Stretch {
    QByteArrayView text;
    /// A line feed stands behind it.
    bool isEnded = false;
};

/// What a byte, or the bytes of a short stretch, adds: three numbers side by side in one word.
namespace Sums
{

constexpr unsigned bitsEach = 20;
constexpr std::uint64_t cell = 1;
constexpr std::uint64_t unit = cell << bitsEach;
/// TAB and CR, whose width depends on where they stand.
constexpr std::uint64_t mover = unit << bitsEach;

constexpr std::int32_t cells(std::uint64_t sum)
{
    return static_cast<std::int32_t>(sum % unit);
}
constexpr std::int32_t utf16Units(std::uint64_t sum)
{
    return static_cast<std::int32_t>(sum % mover / unit);
}
constexpr bool hasMover(std::uint64_t sum)
{
    return sum >= mover;
}

/// All of a code point counts with its first byte. A stretch holds no line feed.
constexpr std::uint64_t ofByte(unsigned byte)
{
    if (byte == '\t' || byte == '\r')
        return unit + mover;
    if (byte >= 0x80U && byte < 0xc0U)
        return 0;
    const bool isWide = byte < 0x20U || byte == 0x7fU || byte >= 0xe0U;
    return (isWide ? 2 : 1) * cell + (byte >= 0xf0U ? 2 : 1) * unit;
}

constexpr std::array<std::uint64_t, 256> table = [] {
    std::array<std::uint64_t, 256> sums{};
    for (unsigned byte = 0; byte < sums.size(); ++byte)
        sums[byte] = ofByte(byte);
    return sums;
}();

std::uint64_t of(QByteArrayView text)
{
    std::uint64_t sum = 0;
    for (const char byte : text)
        sum += table[static_cast<unsigned char>(byte)];
    return sum;
}

} // namespace Sums

/// The cells of a stretch that begins at a column, one character after the other.
std::int32_t cellsFrom(std::int32_t column, const Stretch &stretch)
{
    const std::int32_t first = column;
    for (qsizetype at = 0; at < stretch.text.size(); ++at) {
        const char character = stretch.text[at];
        const auto byte = static_cast<unsigned char>(character);
        const bool endsLine = byte == '\r' && stretch.isEnded && at + 1 == stretch.text.size();
        if (Utf8::isContinuation(character) || endsLine)
            continue;
        if (byte == '\t')
            column += TextMeasure::tabWidth - column % TextMeasure::tabWidth;
        else
            column += byte == '\r' ? 2 : Sums::cells(Sums::table[byte]);
    }
    return column - first;
}

} // namespace

void TextMeasure::add(QByteArrayView text)
{
    // In pieces, because a text that is not all plain mostly is so here and there only.
    constexpr qsizetype pieceSize = 256;
    for (qsizetype at = 0; at < text.size(); at += pieceSize) {
        const QByteArrayView piece = text.sliced(at, std::min(pieceSize, text.size() - at));
        if (isPlain(piece))
            addPlain(piece);
        else
            addAny(piece, text.sliced(at + piece.size()).startsWith('\n'));
    }
}

void TextMeasure::addPlain(QByteArrayView text)
{
    const char *const end = text.data() + text.size();
    for (const char *from = text.data(); from < end;) {
        const char *const lineFeed = lineFeedIn(from, end);
        addCells(static_cast<std::int32_t>(lineFeed - from));
        from = lineFeed;
        if (from < end) {
            endLine();
            ++from;
        }
    }
    m_utf16Length += static_cast<std::int32_t>(text.size());
}

void TextMeasure::addAny(QByteArrayView text, bool isEnded)
{
    const char *const end = text.data() + text.size();
    for (const char *from = text.data(); from < end;) {
        const char *const lineFeed = lineFeedIn(from, end);
        const Stretch stretch{{from, lineFeed - from}, lineFeed < end || isEnded};
        const std::uint64_t sum = Sums::of(stretch.text);
        addCells(Sums::hasMover(sum) ? cellsFrom(m_openLine, stretch) : Sums::cells(sum));
        m_utf16Length += Sums::utf16Units(sum);
        from = lineFeed;
        if (from < end) {
            endLine();
            ++m_utf16Length;
            ++from;
        }
    }
}
