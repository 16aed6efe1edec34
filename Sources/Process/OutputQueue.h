#pragma once

// What one child has said and the main thread has not yet heard: chunks of valid UTF-8 in order, then the end. The
// background thread appends, the main thread delivers.
//
// The amount that waits is bounded. A full queue is not appended to: the rest stays in the child's pipe and holds the
// child up. One append may go past the bound, so that a read need not be cut.

#include "Process/Launch.h"

#include <QByteArray>
#include <QByteArrayView>

#include <deque>
#include <mutex>
#include <optional>

class OutputQueue
{
public:
    /// When the main thread is told that something waits.
    enum class Announcing {
        asItComes,
        /// For who has a use only for all of it: with the end, or earlier when the queue is full.
        atTheEnd
    };

    struct Delivered {
        bool more = false;
        /// The queue was full, someone asked, and now there is room.
        bool madeRoom = false;
    };

    OutputQueue(ProcessHandlePointer handle, OutputHandler onOutput, ExitHandler onExit,
                Announcing announcing = Announcing::asItComes);

    Announcing announcing() const { return m_announcing; }

    /// Whether more may be appended. After a no, the delivery that makes room says so.
    bool hasRoom();

    /// Each returns true when there is something to deliver and was not before: the caller then announces the queue to
    /// the main thread.
    /// `text` is copied, behind the last chunk when that is of the same stream and short.
    [[nodiscard]] bool append(QByteArrayView text, bool isError);
    /// Takes the first `size` bytes of `block` without copying them.
    [[nodiscard]] bool adopt(QByteArray block, qsizetype size, bool isError);
    [[nodiscard]] bool end(int status);

    /// Calls one handler with the next chunk or the end. Main thread.
    Delivered deliverNext();

private:
    struct Chunk {
        QByteArray storage;
        qsizetype begin = 0;
        qsizetype size = 0;
        bool isError = false;
    };

    bool markAnnounced();
    std::optional<Chunk> takeChunk(bool &madeRoom);
    void deliverEnd();

    const ProcessHandlePointer m_handle;
    OutputHandler m_onOutput; // these two on the main thread only
    ExitHandler m_onExit;
    const Announcing m_announcing;

    std::mutex m_lock; // guards all below; the status is fixed once the end is announced
    std::deque<Chunk> m_chunks;
    qsizetype m_size = 0;
    std::optional<int> m_status;
    bool m_isAnnounced = false;
    bool m_isRoomAwaited = false;
};
