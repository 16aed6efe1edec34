#include "RunController/TextMeasure.h"

#include "RunController/Utf8.h"

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

} // namespace

void TextMeasure::add(QByteArrayView text)
{
    if (Utf8::asciiPrefix(text) == text.size() && !text.contains('\t'))
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
    for (const char byte : text) {
        if (byte == '\n') {
            endLine();
            ++m_utf16Length;
            continue;
        }
        if (Utf8::isContinuation(byte))
            continue;
        const int length = Utf8::lengthOf(byte);
        const std::int32_t width = byte == '\t' ? tabWidth - m_openLine % tabWidth : length > 2 ? 2 : 1;
        m_openLine += width;
        m_cells += width;
        m_utf16Length += length == 4 ? 2 : 1;
    }
}
