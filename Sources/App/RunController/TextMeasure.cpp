#include "RunController/TextMeasure.h"

#include "OrbCLI/Utf8.h"

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

/// The cells of the character that begins at `at`, a tab excepted.
std::int32_t cellsOf(QByteArrayView text, qsizetype at)
{
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte == '\r' && at + 1 < text.size() && text[at + 1] == '\n')
        return 0;
    const bool isControl = byte < 0x20U || byte == 0x7fU;
    return isControl || Utf8::lengthOf(text[at]) > 2 ? 2 : 1;
}

} // namespace

void TextMeasure::add(QByteArrayView text)
{
    if (isPlain(text))
        addPlain(text);
    else
        addAny(text);
}

void TextMeasure::addPlain(QByteArrayView text)
{
    const char *const end = text.data() + text.size();
    for (const char *from = text.data(); from < end;) {
        const char *const lineFeed = lineFeedIn(from, end);
        const auto width = static_cast<std::int32_t>(lineFeed - from);
        m_openLine += width;
        m_cells += width;
        from = lineFeed;
        if (from < end) {
            endLine();
            ++from;
        }
    }
    m_utf16Length += static_cast<std::int32_t>(text.size());
}

void TextMeasure::addAny(QByteArrayView text)
{
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char byte = text[at];
        if (Utf8::isContinuation(byte))
            continue;
        m_utf16Length += Utf8::lengthOf(byte) == 4 ? 2 : 1;
        if (byte == '\n') {
            endLine();
            continue;
        }
        const std::int32_t width = byte == '\t' ? tabWidth - m_openLine % tabWidth : cellsOf(text, at);
        m_openLine += width;
        m_cells += width;
    }
}
