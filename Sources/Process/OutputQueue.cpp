#include "Process/OutputQueue.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr qsizetype maximumSize = qsizetype{4} * 1024 * 1024;
/// One call of a handler gets no more than this, so that the main thread can look up often enough.
constexpr qsizetype maximumChunk = qsizetype{64} * 1024;

} // namespace

OutputQueue::OutputQueue(ProcessHandlePointer handle, OutputHandler onOutput, ExitHandler onExit, Announcing announcing)
    : m_handle(std::move(handle)),
      m_onOutput(std::move(onOutput)),
      m_onExit(std::move(onExit)),
      m_announcing(announcing)
{
}

bool OutputQueue::hasRoom()
{
    const std::lock_guard guard(m_lock);
    m_isRoomAwaited = m_size >= maximumSize;
    return !m_isRoomAwaited;
}

bool OutputQueue::append(QByteArrayView text, bool isError)
{
    if (text.size() > maximumChunk)
        return adopt(text.toByteArray(), text.size(), isError);
    const std::lock_guard guard(m_lock);
    m_size += text.size();
    if (!m_chunks.empty()) {
        Chunk &last = m_chunks.back();
        const bool isWhole = last.begin == 0 && last.size == last.storage.size() && last.storage.isDetached();
        if (last.isError == isError && isWhole && last.size + text.size() <= maximumChunk) {
            last.storage.append(text);
            last.size = last.storage.size();
            return markAnnounced();
        }
    }
    m_chunks.push_back({text.toByteArray(), 0, text.size(), isError});
    return markAnnounced();
}

bool OutputQueue::adopt(QByteArray block, qsizetype size, bool isError)
{
    const std::lock_guard guard(m_lock);
    m_size += size;
    for (qsizetype begin = 0; begin < size;) {
        qsizetype end = std::min(size, begin + maximumChunk);
        // Never between the bytes of a character.
        while (end < size && (static_cast<unsigned char>(block.at(end)) & 0xC0U) == 0x80U)
            --end;
        m_chunks.push_back({block, begin, end - begin, isError});
        begin = end;
    }
    return markAnnounced();
}

bool OutputQueue::end(int status)
{
    const std::lock_guard guard(m_lock);
    m_status = status;
    return markAnnounced();
}

OutputQueue::Delivered OutputQueue::deliverNext()
{
    Delivered delivered;
    const std::optional<Chunk> chunk = takeChunk(delivered.madeRoom);
    if (!chunk) {
        deliverEnd();
        return delivered;
    }
    if (m_onOutput)
        m_onOutput(QUtf8StringView(chunk->storage.constData() + chunk->begin, chunk->size), chunk->isError);
    const std::lock_guard guard(m_lock);
    m_isAnnounced = !m_chunks.empty() || m_status.has_value();
    delivered.more = m_isAnnounced;
    return delivered;
}

bool OutputQueue::markAnnounced()
{
    if (m_announcing == Announcing::atTheEnd && !m_status && m_size < maximumSize)
        return false;
    return !std::exchange(m_isAnnounced, true);
}

std::optional<OutputQueue::Chunk> OutputQueue::takeChunk(bool &madeRoom)
{
    const std::lock_guard guard(m_lock);
    if (m_chunks.empty())
        return std::nullopt;
    std::optional<Chunk> chunk(std::move(m_chunks.front()));
    m_chunks.pop_front();
    m_size -= chunk->size;
    // Not at once: a child that is held up is worth waking only for a good stretch.
    madeRoom = m_isRoomAwaited && m_size <= maximumSize / 2;
    m_isRoomAwaited = m_isRoomAwaited && !madeRoom;
    return chunk;
}

void OutputQueue::deliverEnd()
{
    // What the handlers hold belongs to the main thread: released here, not wherever the queue's last owner is.
    const OutputHandler onOutput = std::exchange(m_onOutput, nullptr);
    const ExitHandler onExit = std::exchange(m_onExit, nullptr);
    if (onExit)
        onExit(m_status.value(), m_handle);
}
