#pragma once

// Finding one text in another that comes piece by piece, in time proportional to what is read, whatever is looked for
// and wherever the pieces end. Matches do not overlap. Texts are valid UTF-8 in pieces of whole code points.

#include "Text/CaseFolding.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

/// Where a text was found, half open: byte offsets.
struct TextMatch {
    std::int64_t begin = 0;
    std::int64_t end = 0;

    friend bool operator==(const TextMatch &, const TextMatch &) = default;
};

/// What is looked for. A value that never changes; any thread.
class TextPattern
{
public:
    TextPattern() = default;
    /// With Qt::CaseInsensitive texts match that have the same case folding. Half a surrogate pair, which no text of
    /// whole characters holds, is found nowhere.
    TextPattern(const QString &text, Qt::CaseSensitivity sensitivity);

    /// Finds nothing.
    bool isEmpty() const { return m_bytes.isEmpty(); }
    /// Bytes that a match takes at most.
    std::int64_t mostBytes() const { return longestFolding * m_bytes.size(); }

private:
    friend class TextMatcher;

    /// A character is at most so many times as long as its folding.
    static constexpr std::int64_t longestFolding = 3;

    qsizetype nextCandidate(QByteArrayView text, qsizetype from) const;

    Qt::CaseSensitivity m_sensitivity = Qt::CaseInsensitive;
    /// Folded unless case matters.
    QByteArray m_bytes;
    /// For each length of a beginning of the text, the length of the longest shorter beginning with which it ends.
    std::vector<qsizetype> m_fallbacks;
};

/// Reads a text and tells of the matches in it. One thread at a time.
class TextMatcher
{
public:
    /// Returns whether to go on.
    using Visitor = std::function<bool(TextMatch match)>;

    /// What is read first stands at `position`. The pattern must outlive the matcher.
    TextMatcher(const TextPattern &pattern, std::int64_t position);

    /// Forgets what was read before; what is read next stands at `position`.
    void restart(std::int64_t position);
    /// Reads the next piece, and tells of each match that ends in it. False when the visitor wanted no more; then only
    /// restart() may be called.
    bool read(QByteArrayView text, const Visitor &visit);
    /// Where the next match begins at the earliest.
    std::int64_t earliest() const;

private:
    std::int64_t before(std::int64_t folded) const;
    bool isWithinCharacter(std::int64_t folded) const;
    const CaseFolding::Change &changeAt(std::int64_t folded) const;
    QByteArrayView take(QByteArrayView text);

    const TextPattern &m_pattern;
    /// So many bytes of the pattern are what was read last.
    qsizetype m_matched = 0;
    /// Bytes read since the restart, as folded.
    std::int64_t m_foldedEnd = 0;
    std::int64_t m_end = 0;
    /// As far as a match may still need them; the first always stands before it.
    std::deque<CaseFolding::Change> m_changes;
    QByteArray m_folded;
    std::vector<CaseFolding::Change> m_newChanges;
};
