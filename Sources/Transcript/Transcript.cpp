#include "Transcript/Transcript.h"

#include <algorithm>
#include <iterator>

void Transcript::append(QUtf8StringView text, OutputKind kind)
{
    const QByteArrayView bytes(text.data(), text.size());
    if (m_segments.empty() || m_segments.back().kind != kind)
        m_segments.push_back({.id = QUuid::createUuid(), .begin = m_text.end(), .kind = kind});
    m_text.append(bytes);

    GraphemeCounter &characters = m_segments.back().characters;
    const int before = characters.count();
    characters.add(bytes);
    m_characters += characters.count() - before;
    if (m_characters > characterBound && m_segments.size() >= 2) {
        m_characters -= m_segments.front().characters.count();
        m_segments.pop_front();
        m_text.dropFront(m_segments.front().begin);
    }
}

void Transcript::clear()
{
    m_text.clear();
    std::deque<Segment>().swap(m_segments);
    m_characters = 0;
}

OutputSegment Transcript::segment(std::size_t index) const
{
    const Segment &segment = m_segments[index];
    return {segment.id, m_text.text(segment.begin, endOf(index)), segment.kind};
}

QString Transcript::plainText() const
{
    return m_text.text(begin(), end());
}

Transcript::Run Transcript::runAt(Position position) const
{
    const auto after = std::upper_bound(m_segments.begin(), m_segments.end(), position,
                                        [](Position value, const Segment &segment) { return value < segment.begin; });
    const auto index =
        static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, std::distance(m_segments.begin(), after) - 1));
    return {m_segments[index].begin, endOf(index), m_segments[index].kind};
}

Transcript::Position Transcript::endOf(std::size_t index) const
{
    return index + 1 < m_segments.size() ? m_segments[index + 1].begin : end();
}
