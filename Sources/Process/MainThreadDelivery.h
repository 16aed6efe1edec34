#pragma once

// Carries output and ends to the main thread: it calls the handlers of all children there, in slices, so that the event
// loop paints and reads keys in between however much a child prints. However many chunks wait, one event is pending.

#include "Process/OutputQueue.h"

#include <QObject>

#include <deque>
#include <memory>
#include <mutex>

class MainThreadDelivery : public QObject
{
public:
    MainThreadDelivery();

    /// The queue has something to deliver. Any thread.
    void announce(std::shared_ptr<OutputQueue> queue);

    /// No handler is called any more. Main thread.
    void stop();

    bool event(QEvent *event) override;

private:
    void deliverSlice();
    std::shared_ptr<OutputQueue> takeNext();
    void postLocked();

    std::mutex m_lock; // guards all below
    std::deque<std::shared_ptr<OutputQueue>> m_announced;
    bool m_isPosted = false;
    bool m_isStopped = false;
};
