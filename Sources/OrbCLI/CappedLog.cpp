#include "OrbCLI/CappedLog.h"

#include "Text/GraphemeBreaker.h"
#include "Text/Utf8.h"

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

void CappedLog::append(QUtf8StringView text)
{
    m_text += Utf8::toQString(text);
    m_counter.add(QByteArrayView(text.data(), text.size()));
    if (m_counter.count() > capacity)
        keepLast(keptCharacters);
}

void CappedLog::replace(const QString &text)
{
    m_text = text;
    m_counter = GraphemeCounter(std::numeric_limits<int>::max());
    m_counter.add(text.toUtf8());
}

void CappedLog::keepLast(int characters)
{
    const int dropped = m_counter.count() - characters;
    // Where every character is one unit, as in plain ASCII, there is nothing to look for.
    if (m_counter.count() == m_text.size()) {
        replace(m_text.sliced(dropped));
        return;
    }
    const QByteArray utf8 = m_text.toUtf8();
    replace(Utf8::toQString(QByteArrayView(utf8).sliced(endOfFirst(dropped, utf8))));
}
