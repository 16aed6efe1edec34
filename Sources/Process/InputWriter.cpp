#include "Process/InputWriter.h"

#include "Process/Pipe.h"

#include <cerrno>
#include <utility>

InputWriter::InputWriter(FileDescriptor end, QByteArray text) : m_end(std::move(end)), m_text(std::move(text))
{
    makeNonBlocking(m_end);
}

void InputWriter::write()
{
    while (m_written < m_text.size()) {
        const qsizetype count = ::write(m_end.number(), m_text.constData() + m_written,
                                        static_cast<std::size_t>(m_text.size() - m_written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno == EAGAIN)
            return;
        if (count < 0)
            break;
        m_written += count;
    }
    close();
}

void InputWriter::close()
{
    m_end.close();
    m_text = QByteArray();
}
