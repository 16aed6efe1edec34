#pragma once

// Delivers output and ends on the main thread: it calls the handlers of all children there, in slices, so that the
// event loop paints and reads keys in between however much a child prints. However many chunks wait, one event is
// pending. Must outlive the thread that schedules.

#include "Process/OutputQueue.h"

#include <QObject>

#include <deque>
#include <memory>
#include <mutex>

class MainThreadDelivery : public QObject
{
public:
    MainThreadDelivery();

    /// Delivers what the queue holds as soon as the event loop gets to it. Once until the queue says that there is no
    /// more. Any thread.
    void schedule(std::shared_ptr<OutputQueue> queue);

    /// No handler is called any more. Main thread.
    void stop();

    bool event(QEvent *event) override;

private:
    void deliverSlice();
    std::shared_ptr<OutputQueue> takeNext();
    void postLocked();

    std::mutex m_lock; // guards all below
    std::deque<std::shared_ptr<OutputQueue>> m_scheduled;
    bool m_isPosted = false;
    bool m_isStopped = false;
};
