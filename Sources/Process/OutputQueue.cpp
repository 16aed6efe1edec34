#include "Process/OutputQueue.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr qsizetype maximumSize = qsizetype{4} * 1024 * 1024;
/// One call of a handler gets no more than this, so that the event loop gets its turn often enough.
constexpr qsizetype maximumChunk = qsizetype{64} * 1024;
/// Blocks that are kept to be filled again: as many as a full queue holds.
constexpr std::size_t mostDelivered = 4;

} // namespace

OutputQueue::OutputQueue(ProcessHandlePointer handle, OutputHandler onOutput, ExitHandler onExit, Listener listener,
                         Delivery delivery)
    : m_handle(std::move(handle)),
      m_onOutput(std::move(onOutput)),
      m_onExit(std::move(onExit)),
      m_listener(std::move(listener)),
      m_delivery(delivery)
{
}

bool OutputQueue::hasRoom()
{
    const std::lock_guard guard(m_lock);
    m_isRoomAwaited = m_size >= maximumSize;
    return !m_isRoomAwaited;
}

void OutputQueue::append(QByteArrayView text, OutputStream stream)
{
    if (text.size() > maximumChunk)
        return adopt(text.toByteArray(), text.size(), stream);
    std::unique_lock guard(m_lock);
    m_size += text.size();
    Chunk *const last = m_chunks.empty() ? nullptr : &m_chunks.back();
    const bool isJoined = last != nullptr && last->stream == stream && last->size + text.size() <= maximumChunk &&
                          last->begin == 0 && last->size == last->storage.size() && last->storage.isDetached();
    if (isJoined) {
        last->storage.append(text);
        last->size = last->storage.size();
    } else {
        m_chunks.push_back({text.toByteArray(), 0, text.size(), stream});
    }
    notifyIfReady(std::move(guard));
}

void OutputQueue::adopt(QByteArray block, qsizetype size, OutputStream stream)
{
    std::unique_lock guard(m_lock);
    m_size += size;
    for (qsizetype begin = 0; begin < size;) {
        qsizetype end = std::min(size, begin + maximumChunk);
        // Never between the bytes of a character.
        while (end < size && (static_cast<unsigned char>(block.at(end)) & 0xC0U) == 0x80U)
            --end;
        m_chunks.push_back({block, begin, end - begin, stream});
        begin = end;
    }
    notifyIfReady(std::move(guard));
}

QByteArray OutputQueue::takeDelivered()
{
    const std::lock_guard guard(m_lock);
    if (m_delivered.empty())
        return {};
    QByteArray block = std::move(m_delivered.back());
    m_delivered.pop_back();
    return block;
}

void OutputQueue::end(int status)
{
    std::unique_lock guard(m_lock);
    m_status = status;
    notifyIfReady(std::move(guard));
}

void OutputQueue::notifyIfReady(std::unique_lock<std::mutex> guard)
{
    if (m_delivery == Delivery::atTheEnd && !m_status && m_size < maximumSize)
        return;
    if (std::exchange(m_isReady, true))
        return;
    guard.unlock();
    m_listener.onReady(shared_from_this());
}

bool OutputQueue::deliverNext()
{
    std::optional<Chunk> chunk = takeChunk();
    if (!chunk) {
        deliverEnd();
        return false;
    }
    if (m_onOutput)
        m_onOutput(QUtf8StringView(chunk->storage.constData() + chunk->begin, chunk->size),
                   chunk->stream == OutputStream::error);
    std::unique_lock guard(m_lock);
    // Its last chunk: nobody else holds it.
    if (chunk->storage.size() > maximumChunk && chunk->storage.isDetached() && m_delivered.size() < mostDelivered)
        m_delivered.push_back(std::move(chunk->storage));
    const bool isMore = !m_chunks.empty() || m_status.has_value();
    m_isReady = isMore;
    // Not at once: a child that is held up is worth waking only for a good stretch.
    const bool madeRoom = m_isRoomAwaited && m_size <= maximumSize / 2;
    m_isRoomAwaited = m_isRoomAwaited && !madeRoom;
    guard.unlock();
    if (madeRoom)
        m_listener.onRoom();
    return isMore;
}

std::optional<OutputQueue::Chunk> OutputQueue::takeChunk()
{
    const std::lock_guard guard(m_lock);
    if (m_chunks.empty())
        return std::nullopt;
    std::optional<Chunk> chunk(std::move(m_chunks.front()));
    m_chunks.pop_front();
    m_size -= chunk->size;
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
