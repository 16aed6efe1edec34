#include "Text/TextPattern.h"

#include <algorithm>
#include <array>

namespace
{

/// So many bytes are compared in one go, with the processor's wide registers.
constexpr qsizetype comparedAtOnce = 64;

/// Never occurs in UTF-8.
const QByteArray foundNowhere("\xff");

} // namespace

TextPattern::TextPattern(const QString &text, Qt::CaseSensitivity sensitivity) : m_sensitivity(sensitivity)
{
    if (!text.isValidUtf16()) {
        m_bytes = foundNowhere;
    } else if (sensitivity == Qt::CaseSensitive) {
        m_bytes = text.toUtf8();
    } else {
        std::vector<CaseFolding::Change> changes;
        CaseFolding::fold(text.toUtf8(), m_bytes, changes);
    }
    m_fallbacks.resize(static_cast<std::size_t>(m_bytes.size()) + 1);
    qsizetype length = 0;
    for (qsizetype at = 1; at < m_bytes.size(); ++at) {
        while (length > 0 && m_bytes[at] != m_bytes[length])
            length = m_fallbacks[static_cast<std::size_t>(length)];
        if (m_bytes[at] == m_bytes[length])
            ++length;
        m_fallbacks[static_cast<std::size_t>(at) + 1] = length;
    }
}

/// The next place at which a match may begin: where the pattern's first byte stands and a later one of it in its place,
/// as far as the text reaches.
qsizetype TextPattern::nextCandidate(QByteArrayView text, qsizetype from) const
{
    const qsizetype distance = std::min(m_bytes.size(), comparedAtOnce) - 1;
    const char first = m_bytes[0];
    if (distance == 0) {
        const qsizetype at = text.indexOf(first, from);
        return at < 0 ? text.size() : at;
    }
    const char second = m_bytes[distance];
    const char *const bytes = text.data();
    const qsizetype end = text.size() - distance;
    qsizetype at = from;
    for (; at + comparedAtOnce <= end; at += comparedAtOnce) {
        unsigned char any = 0;
        for (qsizetype index = at; index < at + comparedAtOnce; ++index)
            any |= static_cast<unsigned char>(bytes[index] == first) &
                   static_cast<unsigned char>(bytes[index + distance] == second);
        if (any != 0)
            break;
    }
    while (at < end && (bytes[at] != first || bytes[at + distance] != second))
        ++at;
    while (at < text.size() && bytes[at] != first)
        ++at;
    return at;
}

TextMatcher::TextMatcher(const TextPattern &pattern, std::int64_t position) : m_pattern(pattern)
{
    restart(position);
}

void TextMatcher::restart(std::int64_t position)
{
    m_matched = 0;
    m_foldedEnd = 0;
    m_end = position;
    m_changes.assign(1, {0, 0, position, position});
}

/// The text in which to look: folded, unless case matters.
QByteArrayView TextMatcher::take(QByteArrayView text)
{
    const std::int64_t begin = m_end;
    m_end += text.size();
    if (m_pattern.m_sensitivity == Qt::CaseSensitive)
        return text;
    while (m_changes.size() > 1 && m_changes[1].foldedEnd <= m_foldedEnd - m_matched)
        m_changes.pop_front();
    m_newChanges.clear();
    CaseFolding::fold(text, m_folded, m_newChanges);
    for (const CaseFolding::Change &change : m_newChanges) {
        m_changes.push_back({m_foldedEnd + change.foldedBegin, m_foldedEnd + change.foldedEnd, begin + change.begin,
                             begin + change.end});
    }
    return m_folded;
}

bool TextMatcher::read(QByteArrayView text, const Visitor &visit)
{
    if (m_pattern.isEmpty())
        return true;
    const QByteArrayView bytes = take(text);
    const std::int64_t begin = m_foldedEnd;
    m_foldedEnd += bytes.size();
    const QByteArray &wanted = m_pattern.m_bytes;
    const auto fallBack = [&] { m_matched = m_pattern.m_fallbacks[static_cast<std::size_t>(m_matched)]; };
    for (qsizetype at = 0; at < bytes.size(); ++at) {
        if (m_matched == 0) {
            at = m_pattern.nextCandidate(bytes, at);
            if (at == bytes.size())
                break;
        }
        while (m_matched > 0 && wanted[m_matched] != bytes[at])
            fallBack();
        if (wanted[m_matched] == bytes[at])
            ++m_matched;
        if (m_matched < wanted.size())
            continue;
        const std::int64_t foldedEnd = begin + at + 1;
        const std::int64_t foldedBegin = foldedEnd - wanted.size();
        if (isWithinCharacter(foldedBegin) || isWithinCharacter(foldedEnd)) {
            fallBack();
            continue;
        }
        m_matched = 0;
        if (!visit({before(foldedBegin), before(foldedEnd)}))
            return false;
    }
    return true;
}

std::int64_t TextMatcher::earliest() const
{
    return before(m_foldedEnd - m_matched);
}

const CaseFolding::Change &TextMatcher::changeAt(std::int64_t folded) const
{
    const auto after =
        std::upper_bound(m_changes.begin(), m_changes.end(), folded,
                         [](std::int64_t place, const CaseFolding::Change &each) { return place < each.foldedBegin; });
    return *std::prev(after);
}

bool TextMatcher::isWithinCharacter(std::int64_t folded) const
{
    const CaseFolding::Change &change = changeAt(folded);
    return folded > change.foldedBegin && folded < change.foldedEnd;
}

/// The text's position for one in its folded form.
std::int64_t TextMatcher::before(std::int64_t folded) const
{
    const CaseFolding::Change &change = changeAt(folded);
    return folded >= change.foldedEnd ? change.end + (folded - change.foldedEnd) : change.begin;
}
