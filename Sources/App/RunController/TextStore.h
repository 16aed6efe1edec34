#pragma once

// An append-only store of UTF-8 text in blocks, which knows where lines start without an entry per line: each block
// counts its line feeds, and a search inside one block is a few microseconds. Main thread only.

#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <deque>
#include <memory>

class TextStore
{
public:
    /// Byte offset from the first byte ever appended since the last clear.
    using Position = std::int64_t;

    void append(QByteArrayView text);
    void dropFront(Position newBegin);
    void clear();

    Position begin() const { return m_begin; }
    Position end() const { return m_end; }

private:
    Position m_begin = 0;
    Position m_end = 0;
};
