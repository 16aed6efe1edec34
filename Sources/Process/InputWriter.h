#pragma once

// Writes a text to a child's standard input as fast as the child takes it and then closes it. A child that does not
// read holds up nothing; a child that has closed its input ends the writing. Background thread only.

#include "Process/FileDescriptor.h"

#include <QByteArray>

class InputWriter
{
public:
    /// Nothing to write.
    InputWriter() = default;
    /// Writes into the pipe before its write end, which becomes non-blocking.
    InputWriter(FileDescriptor end, QByteArray text);

    bool isDone() const { return !m_end.isOpen(); }
    int descriptor() const { return m_end.number(); }

    /// Writes what the pipe takes now.
    void write();

    /// Gives up the rest.
    void close();

private:
    FileDescriptor m_end;
    QByteArray m_text;
    qsizetype m_written = 0;
};
