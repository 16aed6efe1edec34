#include "Transcript/Transcript.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

void Transcript::append(QUtf8StringView text, OutputKind kind)
{
    const QByteArrayView bytes(text.data(), text.size());
    if (m_segments.empty() || m_segments.back().kind != kind)
        m_segments.push_back({.id = QUuid::createUuid(), .begin = end(), .kind = kind});
    m_store.append(bytes, kind);

    GraphemeCounter &characters = m_segments.back().characters;
    const int before = characters.count();
    characters.add(bytes);
    m_characters += characters.count() - before;
    if (m_characters > characterBound && m_segments.size() >= 2) {
        dropFrontSegment();
        dropUnused();
    }
}

void Transcript::dropFrontSegment()
{
    m_characters -= m_segments.front().characters.count();
    m_segments.pop_front();
    m_text.moveBegin(m_segments.front().begin);
}

/// The store forgets what neither view shows.
void Transcript::dropUnused()
{
    m_store.dropBefore(std::min(m_text.begin(), m_record.begin()));
}

void Transcript::clear()
{
    std::deque<Segment>().swap(m_segments);
    m_characters = 0;
    m_text.moveBegin(end());
    beginRecord();
}

void Transcript::beginRecord()
{
    m_record.moveBegin(end());
    m_recordBegin = end();
    dropUnused();
    // What is lost of the dropped, which a snapshot may hold, does not count from here on.
    m_lostBefore = m_store.loss().inside;
}

void Transcript::dropLost()
{
    const TextStore::BlockNumber kept = std::min<TextStore::BlockNumber>(m_store.loss().front, m_store.endBlock());
    if (kept <= m_store.firstBlock())
        return;
    const Position begin = m_store.before(kept).bytes;
    m_record.moveBegin(begin);
    while (m_segments.size() >= 2 && m_segments[1].begin <= begin)
        dropFrontSegment();
    m_text.moveBegin(begin);
    if (!m_segments.empty())
        m_segments.front().begin = std::max(m_segments.front().begin, begin);
    dropUnused();
}

QString Transcript::loss() const
{
    const BlockStore::Loss loss = m_store.loss();
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const auto size = [&](std::int64_t bytes) {
        return english.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
    };
    QStringList sentences;
    if (const std::int64_t front = m_record.begin() - m_recordBegin; front > 0) {
        const QString reason = loss.cause == BlockStore::Cause::noFile ? u"no temporary file can be written."_s
                                                                       : u"the disk is nearly full."_s;
        sentences << u"The first "_s + size(front) + u" of the output were dropped: "_s + reason;
    }
    if (const std::int64_t inside = loss.inside - m_lostBefore; inside > 0)
        sentences << size(inside) + u" of the output were dropped: the disk is too slow."_s;
    return sentences.join(u' ');
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

Transcript::Position Transcript::endOf(std::size_t index) const
{
    return index + 1 < m_segments.size() ? m_segments[index + 1].begin : end();
}
