#pragma once

// The text of a log that a tool writes into while it runs: it grows by chunks, and past 200,000 characters only its
// last 150,000 stay. Characters are those a reader sees (grapheme clusters). Appending costs what the new text costs,
// whatever the log already holds.

#include "Text/GraphemeCounter.h"

#include <QByteArrayView>
#include <QString>
#include <QUtf8StringView>

#include <limits>

class CappedLog
{
public:
    static constexpr int capacity = 200'000;
    static constexpr int keptCharacters = 150'000;

    const QString &text() const { return m_text; }

    /// Adds the text, then drops the front when the log has become too long.
    void append(QUtf8StringView text);

    /// Makes this the whole text, whatever its length; only growing is capped.
    void replace(const QString &text);

private:
    void keepLast(int characters);

    QString m_text;
    GraphemeCounter m_counter{std::numeric_limits<int>::max()};
};
