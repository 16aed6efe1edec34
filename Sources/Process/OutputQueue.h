#pragma once

// The output of one child that the main thread has not yet processed: chunks of valid UTF-8 in order, then the end.
// The background thread appends, the main thread delivers.
//
// The amount that waits is bounded. A full queue is not appended to: the rest stays in the child's pipe and holds the
// child up. One append of each stream may go past the bound, so that a read need not be cut.

#include "Process/Launch.h"

#include <QByteArray>
#include <QByteArrayView>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/// The streams that a child writes to.
enum class OutputStream { standard, error };

class OutputQueue : public std::enable_shared_from_this<OutputQueue>
{
public:
    /// Who is notified of the queue; what the functions refer to must outlive it.
    struct Listener {
        /// There is something to deliver and was not before. On the thread that appended it.
        std::function<void(std::shared_ptr<OutputQueue> queue)> onReady;
        /// The queue was full, hasRoom was asked, and now there is room. Main thread.
        std::function<void()> onRoom;
    };

    /// When the queue is ready for delivery.
    enum class Delivery {
        asItComes,
        /// For a caller that collects the output: with the end, or earlier when the queue is full.
        atTheEnd
    };

    /// To be owned by a shared pointer, which the listener gets.
    OutputQueue(ProcessHandlePointer handle, OutputHandler onOutput, ExitHandler onExit, Listener listener,
                Delivery delivery = Delivery::asItComes);

    /// Whether more may be appended. After a no, the listener is notified of room.
    bool hasRoom();

    /// Copies `text`, behind the last chunk when that is of the same stream and short.
    void append(QByteArrayView text, OutputStream stream);
    /// Takes the first `size` bytes of `block` without copying them.
    void adopt(QByteArray block, qsizetype size, OutputStream stream);
    /// An adopted block whose text was delivered, as it was adopted, to be filled again; empty when there is none.
    QByteArray takeDelivered();
    /// Nothing is appended any more.
    void end(int status);

    /// Calls one handler with the next chunk or the end, and returns whether more is to be delivered; if not, the
    /// listener is notified when there is. Main thread.
    bool deliverNext();

private:
    struct Chunk {
        QByteArray storage;
        qsizetype begin = 0;
        qsizetype size = 0;
        OutputStream stream = OutputStream::standard;
    };

    /// Takes the lock and releases it before it calls the listener.
    void notifyIfReady(std::unique_lock<std::mutex> guard);
    std::optional<Chunk> takeChunk();
    void deliverEnd();

    const ProcessHandlePointer m_handle;
    OutputHandler m_onOutput; // these two on the main thread only
    ExitHandler m_onExit;
    const Listener m_listener;
    const Delivery m_delivery;

    std::mutex m_lock; // guards all below; the status is fixed once the listener was notified of the end
    std::deque<Chunk> m_chunks;
    std::vector<QByteArray> m_delivered;
    qsizetype m_size = 0;
    std::optional<int> m_status;
    bool m_isReady = false;
    bool m_isRoomAwaited = false;
};
