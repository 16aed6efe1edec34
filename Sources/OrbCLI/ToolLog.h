#pragma once

// The log that tools print into while they run: it grows by chunks, and past 200,000 characters only its last 150,000
// stay. Characters are those a reader sees (grapheme clusters). Appending costs what the new text costs, whatever the
// log already holds. Main thread.

#include "Process/Launch.h"
#include "Text/GraphemeCounter.h"

#include <QObject>
#include <QString>
#include <QUtf8StringView>

#include <limits>

class ToolLog : public QObject
{
    Q_OBJECT

public:
    static constexpr int capacity = 200'000;
    static constexpr int keptCharacters = 150'000;

    using QObject::QObject;

    const QString &text() const { return m_text; }

    /// Adds the text, then drops the front when the log has become too long.
    void append(QUtf8StringView text);

    /// Makes this the whole text, or its end when it is too long.
    void replace(const QString &text);

    /// Appends what a tool prints, on standard output and standard error alike. What is printed after the log was
    /// destroyed is dropped.
    OutputHandler outputHandler();

Q_SIGNALS:
    /// The text is another one now.
    void changed();

private:
    void setText(const QString &text);
    /// Keeps the last `keptCharacters` of a text that is longer than `capacity`.
    void cap();

    QString m_text;
    GraphemeCounter m_counter{std::numeric_limits<int>::max()};
};
