#include "Process/OutputReader.h"

#include "Process/Pipe.h"
#include "Text/Utf8Repair.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

namespace
{

constexpr qsizetype largestPipeSize = qsizetype{1024} * 1024;

} // namespace

OutputReader::OutputReader(FileDescriptor end, OutputStream stream) : m_end(std::move(end)), m_stream(stream)
{
    makeNonBlocking(m_end);
}

void OutputReader::close()
{
    m_end.close();
    m_repaired = {};
}

qsizetype OutputReader::read(QByteArray &block, OutputQueue &queue)
{
    // The pages of one that was filled before are there already; one from another pipe may be smaller.
    if (block.size() < m_pipeSize)
        block = queue.takeDelivered();
    if (block.size() < m_pipeSize)
        block = QByteArray(m_pipeSize, Qt::Uninitialized);
    const qsizetype size = ::read(m_end.number(), block.data(), static_cast<std::size_t>(block.size()));
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return 0;
    if (size <= 0) {
        close();
        return 0;
    }
    // A child that fills its pipe is worth a larger one, which drains several times faster; the many that print a line
    // or two would pay for it in vain, and all pipes of a user share one allowance.
    if (size >= m_pipeSize && m_pipeSize < largestPipeSize &&
        enlargePipe(m_end, static_cast<std::size_t>(largestPipeSize)))
        m_pipeSize = largestPipeSize;

    if (const auto repairedSize = Utf8Repair::repairInto(m_repaired, QByteArrayView(block.constData(), size))) {
        append(m_repaired, *repairedSize, queue);
        if (m_repaired.isEmpty())
            m_repaired = queue.takeDelivered();
    } else {
        append(block, size, queue);
    }
    return size;
}

void OutputReader::append(QByteArray &block, qsizetype size, OutputQueue &queue) const
{
    // A block given away for little text would keep its whole memory while it waits, and short texts are joined where
    // they are copied.
    if (size < std::max(block.size(), m_pipeSize) / 4)
        queue.append(QByteArrayView(block.constData(), size), m_stream);
    else
        queue.adopt(std::exchange(block, QByteArray()), size, m_stream);
}
