#include "Transcript/TextCount.h"

#include "Text/Utf8.h"

#include <algorithm>

namespace
{

/// The bytes for which the condition holds. Counted in bytes, a stretch at a time, so that the processor looks at many
/// at once.
template <typename Condition>
std::int64_t countOf(QByteArrayView text, Condition condition)
{
    constexpr qsizetype mostInAByte = 255;
    std::int64_t count = 0;
    while (!text.isEmpty()) {
        const QByteArrayView stretch = text.first(std::min(text.size(), mostInAByte));
        unsigned char here = 0;
        for (const char byte : stretch)
            here = static_cast<unsigned char>(here + static_cast<unsigned char>(condition(byte)));
        count += here;
        text = text.sliced(stretch.size());
    }
    return count;
}

} // namespace

TextCount TextCount::of(QByteArrayView text)
{
    const auto isPair = [](char byte) { return static_cast<unsigned char>(byte) >= 0xf0U; };
    return {text.size(), text.size() - countOf(text, Utf8::isContinuation) + countOf(text, isPair),
            countOf(text, [](char byte) { return byte == '\n'; })};
}
