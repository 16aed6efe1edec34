#pragma once

// Counts the user-perceived characters of a text that arrives in chunks cut anywhere between code points, in one pass
// and with a fast path for ASCII. Counting stops at a limit: who only wants to know whether a bound was passed need not
// pay for more.

#include "Text/GraphemeBreaker.h"

#include <QByteArrayView>

class GraphemeCounter
{
public:
    explicit GraphemeCounter(int limit) : m_limit(limit) {}

    /// Adds the next piece of the text: UTF-8 that holds whole code points.
    void add(QByteArrayView text);

    /// The characters so far, at most the limit.
    int count() const { return m_count; }

private:
    GraphemeBreaker m_breaker;
    int m_limit;
    int m_count = 0;
};
