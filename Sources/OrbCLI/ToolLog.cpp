#include "OrbCLI/ToolLog.h"

#include "Text/GraphemeBreaker.h"
#include "Text/Utf8.h"

#include <QPointer>

namespace
{

/// Where the text goes on behind its first `characters`, of which it has more.
qsizetype endOfFirst(int characters, QByteArrayView text)
{
    GraphemeBreaker breaker;
    qsizetype at = 0;
    for (qsizetype next = 0;; at = next) {
        if (breaker.startsCluster(Utf8::next(text, next)) && characters-- == 0)
            return at;
    }
}

} // namespace

void ToolLog::append(QUtf8StringView text)
{
    if (text.isEmpty())
        return;
    m_text += Utf8::toQString(text);
    m_counter.add(QByteArrayView(text.data(), text.size()));
    cap();
    Q_EMIT changed();
}

void ToolLog::replace(const QString &text)
{
    if (m_text == text)
        return;
    setText(text);
    cap();
    Q_EMIT changed();
}

OutputHandler ToolLog::outputHandler()
{
    return [self = QPointer(this)](QUtf8StringView text, bool) {
        if (self)
            self->append(text);
    };
}

void ToolLog::setText(const QString &text)
{
    m_text = text;
    m_counter = GraphemeCounter(std::numeric_limits<int>::max());
    m_counter.add(text.toUtf8());
}

void ToolLog::cap()
{
    if (m_counter.count() <= capacity)
        return;
    const int dropped = m_counter.count() - keptCharacters;
    // Where every character is one unit, as in plain ASCII, there is nothing to look for.
    if (m_counter.count() == m_text.size()) {
        setText(m_text.sliced(dropped));
        return;
    }
    const QByteArray utf8 = m_text.toUtf8();
    setText(Utf8::toQString(QByteArrayView(utf8).sliced(endOfFirst(dropped, utf8))));
}
