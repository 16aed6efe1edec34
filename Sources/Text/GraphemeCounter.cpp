#include "Text/GraphemeCounter.h"

#include "Text/Utf8.h"

#include <algorithm>

namespace
{

qsizetype pairsOfCarriageReturnAndLineFeed(QByteArrayView text)
{
    qsizetype pairs = 0;
    for (qsizetype at = text.indexOf('\r'); at >= 0 && at + 1 < text.size(); at = text.indexOf('\r', at + 1))
        pairs += text[at + 1] == '\n' ? 1 : 0;
    return pairs;
}

} // namespace

void GraphemeCounter::add(QByteArrayView text)
{
    qsizetype count = m_count;
    for (qsizetype at = 0; at < text.size() && count < m_limit;) {
        const QByteArrayView ascii = text.sliced(at, Utf8::asciiPrefix(text.sliced(at)));
        if (ascii.size() < 2) {
            count += m_breaker.startsCluster(Utf8::next(text, at)) ? 1 : 0;
            continue;
        }
        // Only the first can join with what came before, and only the last matters for what follows.
        count += m_breaker.startsCluster(static_cast<unsigned char>(ascii.front())) ? 1 : 0;
        count += ascii.size() - 1 - pairsOfCarriageReturnAndLineFeed(ascii);
        m_breaker = {};
        m_breaker.startsCluster(static_cast<unsigned char>(ascii.back()));
        at += ascii.size();
    }
    m_count = static_cast<int>(std::min<qsizetype>(count, m_limit));
}
