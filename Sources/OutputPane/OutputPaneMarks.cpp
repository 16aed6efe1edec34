#include "OutputPane/OutputPaneMarks.h"

#include "Text/Utf8.h"

#include <algorithm>
#include <utility>

namespace
{

/// The next place at which a character begins, or the text's end.
qsizetype characterAt(QByteArrayView text, qsizetype at)
{
    while (at < text.size() && Utf8::isContinuation(text[at]))
        ++at;
    return at;
}

} // namespace

std::vector<TextMatch> OutputPaneMarks::between(Position from, Position to) const
{
    std::vector<TextMatch> found;
    if (m_pattern.isEmpty())
        return found;
    const Position outside = std::min<Position>(mostOutside, m_pattern.mostBytes());
    const Position begin = std::max(m_text.begin(), from - outside);
    const Position end = std::min(m_text.end(), to + outside);
    TextMatcher matcher(m_pattern, begin);
    const auto add = [&](TextMatch match) {
        if (match.begin < to && match.end > from)
            found.push_back(match);
        return match.begin < to;
    };
    for (Position at = begin; at < end;) {
        const TextView::BlockNumber number = m_text.blockAt(at);
        const TextView::Block block = m_text.block(number);
        const QByteArrayView text = m_text.bytes(number);
        const Position position = std::exchange(at, block.end());
        // In place of a missing block there is a sentence, which is not looked through.
        if (text.size() != block.size.bytes) {
            matcher.restart(at);
            continue;
        }
        const qsizetype first = characterAt(text, position - block.begin());
        const qsizetype last = characterAt(text, std::min<qsizetype>(text.size(), end - block.begin()));
        if (position == begin)
            matcher.restart(block.begin() + first);
        if (!matcher.read(text.sliced(first, last - first), add))
            break;
    }
    return found;
}
