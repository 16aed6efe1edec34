#pragma once

// Reads one output pipe of a child, makes each read valid text by itself and appends it to the child's queue.
// Background thread only.

#include "Process/FileDescriptor.h"
#include "Process/OutputQueue.h"

#include <QByteArray>

class OutputReader
{
public:
    /// At its end from the beginning.
    OutputReader() = default;
    /// Reads the pipe behind its read end, which becomes non-blocking.
    OutputReader(FileDescriptor end, OutputStream stream);

    /// Whoever still writes into the pipe is told by the system that nobody reads it.
    void close();
    bool isAtEnd() const { return !m_end.isOpen(); }
    int descriptor() const { return m_end.number(); }

    /// Takes all that the pipe holds now, by way of `block`, which is shared by all readers and may be given away. At
    /// the end of file the reader closes. Returns the number of bytes.
    qsizetype read(QByteArray &block, OutputQueue &queue);

private:
    /// Appends the first `size` bytes of the block, which it gives away where they are a good part of it.
    void append(QByteArray &block, qsizetype size, OutputQueue &queue) const;

    FileDescriptor m_end;
    QByteArray m_repaired; // room for the next read that is not valid as it stands
    qsizetype m_pipeSize = qsizetype{64} * 1024;
    OutputStream m_stream = OutputStream::standard;
};
