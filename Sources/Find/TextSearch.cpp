#include "Find/TextSearch.h"

#include "Text/Utf8.h"

#include <algorithm>

namespace
{

/// Behind a stretch's end, where only a match that began before is read to its end, so much is read at a time.
constexpr qsizetype stepBeyond = qsizetype{4} * 1024;

constexpr auto all = [](TextMatch) { return true; };

qsizetype wholeCharacters(QByteArrayView text, qsizetype size)
{
    while (size < text.size() && Utf8::isContinuation(text[size]))
        ++size;
    return std::min(size, text.size());
}

} // namespace

TextSearch::TextSearch(TextPattern pattern, Stop stop)
    : m_pattern(std::move(pattern)),
      m_stop(std::move(stop)),
      m_matcher(m_pattern, 0)
{
}

void TextSearch::setText(TextSnapshot text)
{
    m_piece.reset();
    const Position oldEnd = std::exchange(m_textEnd, text.end());
    m_textBegin = text.begin();
    m_text = std::move(text);

    if (m_textBegin == m_textEnd) {
        m_stretches.clear();
        m_known = m_firstUnknown = 0;
        m_count = 0;
        return;
    }
    const Position first = m_textBegin / stretchSize;
    for (; !m_stretches.empty() && m_first < first; ++m_first) {
        forget(0);
        m_stretches.pop_front();
    }
    if (m_stretches.empty())
        m_first = first;
    else
        forgetIfMoved(0);
    // What comes behind the old end may complete a match that begins before it.
    if (m_textEnd != oldEnd && !m_stretches.empty()) {
        const Index changed = indexOf(std::max(m_textBegin, oldEnd - m_pattern.mostBytes()));
        for (Index index = changed; index < m_stretches.size(); ++index)
            forget(index);
    }
    m_stretches.resize(static_cast<Index>((m_textEnd + stretchSize - 1) / stretchSize - m_first));
}

void TextSearch::releaseText()
{
    m_piece.reset();
    m_text = TextSnapshot();
}

void TextSearch::countOn()
{
    while (m_firstUnknown < m_stretches.size() && m_stretches[m_firstUnknown].isKnown)
        ++m_firstUnknown;
    if (m_firstUnknown < m_stretches.size())
        look(m_firstUnknown, all);
}

std::optional<TextMatch> TextSearch::firstFrom(Position position)
{
    const Index size = m_stretches.size();
    position = std::clamp(position, m_textBegin, m_textEnd);
    const Index start = std::min(indexOf(position), size - 1);
    // The stretch with which it began comes again at last, for what is before the position.
    for (Index step = 0; size > 0 && step <= size && !m_stop(); ++step) {
        const Index index = (start + step) % size;
        if (const auto match = firstIn(index, step == 0 ? position : m_textBegin))
            return match;
    }
    return std::nullopt;
}

std::optional<TextMatch> TextSearch::lastBefore(Position position)
{
    const Index size = m_stretches.size();
    position = std::clamp(position, m_textBegin, m_textEnd);
    const Index start = std::min(indexOf(position), size - 1);
    for (Index step = 0; size > 0 && step <= size && !m_stop(); ++step) {
        const Index index = (start + size + size - step) % size;
        if (const auto match = lastIn(index, step == 0 ? position : m_textEnd))
            return match;
    }
    return std::nullopt;
}

std::int64_t TextSearch::countBefore(Position position)
{
    std::int64_t count = 0;
    for (Index index = 0; index < m_stretches.size() && beginOf(index) < position; ++index) {
        if (beginOf(index) + stretchSize <= position) {
            count += m_stretches[index].matches;
            continue;
        }
        look(index, [&](TextMatch match) {
            count += match.begin < position ? 1 : 0;
            return match.begin < position;
        });
    }
    return count;
}

std::optional<TextMatch> TextSearch::firstIn(Index index, Position position)
{
    std::optional<TextMatch> found;
    if (!isKnownToHaveNone(index)) {
        look(index, [&](TextMatch match) {
            if (match.begin >= position)
                found = match;
            return !found;
        });
    }
    return found;
}

std::optional<TextMatch> TextSearch::lastIn(Index index, Position position)
{
    std::optional<TextMatch> found;
    if (!isKnownToHaveNone(index)) {
        look(index, [&](TextMatch match) {
            if (match.begin < position)
                found = match;
            return match.begin < position;
        });
    }
    return found;
}

/// A match of the stretch before may reach into this one, and the text may begin in it.
TextSearch::Position TextSearch::searchBegin(Index index) const
{
    const Position reached = index > 0 ? m_stretches[index - 1].beyond : 0;
    return std::max(beginOf(index) + reached, m_textBegin);
}

void TextSearch::forget(Index index)
{
    if (m_stretches[index].isKnown)
        --m_known;
    m_count -= m_stretches[index].matches;
    m_stretches[index] = {};
    m_firstUnknown = std::min(m_firstUnknown, index);
}

void TextSearch::forgetIfMoved(Index index)
{
    if (m_stretches[index].isKnown && m_stretches[index].begin != searchBegin(index))
        forget(index);
}

void TextSearch::keep(Index index, const Stretch &found)
{
    forget(index);
    m_stretches[index] = found;
    m_count += found.matches;
    ++m_known;
    if (index + 1 < m_stretches.size())
        forgetIfMoved(index + 1);
}

/// Tells of the matches that begin in a stretch; unless it is stopped before its end, it is known then.
void TextSearch::look(Index index, const TextMatcher::Visitor &visit)
{
    const Position border = beginOf(index) + stretchSize;
    Position at = searchBegin(index);
    Stretch found{.isKnown = true, .begin = at, .beyond = std::max<Position>(0, at - border)};
    const auto add = [&](TextMatch match) {
        if (match.begin >= border)
            return false;
        ++found.matches;
        found.beyond = std::max<Position>(0, match.end - border);
        found.isKnown = visit(match);
        return found.isKnown;
    };
    m_matcher.restart(at);
    while (at < m_textEnd && (at < border || m_matcher.earliest() < border)) {
        if (!m_piece || at < m_piece->begin || at >= m_piece->end)
            m_piece = m_text.pieceAt(at);
        if (m_piece->isMissing) {
            at = m_piece->end;
            m_matcher.restart(at);
            continue;
        }
        QByteArrayView text = m_piece->bytes.sliced(at - m_piece->begin);
        // A stretch may begin, or the search behind the border go on, within a character.
        if (Utf8::isContinuation(text[0])) {
            at += wholeCharacters(text, 1);
            m_matcher.restart(at);
            continue;
        }
        text = text.first(wholeCharacters(text, at < border ? border - at : stepBeyond));
        if (!m_matcher.read(text, add))
            break;
        at += text.size();
    }
    if (found.isKnown)
        keep(index, found);
}
