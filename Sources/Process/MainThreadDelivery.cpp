#include "Process/MainThreadDelivery.h"

#include <QCoreApplication>
#include <QEvent>

#include <chrono>
#include <utility>

namespace
{

/// An eighth of a frame; the rest is for painting and for the user. An event loop may give two slices a turn.
constexpr auto sliceLength = std::chrono::milliseconds(2);

} // namespace

MainThreadDelivery::MainThreadDelivery()
{
    if (QCoreApplication::instance() != nullptr)
        moveToThread(QCoreApplication::instance()->thread());
}

void MainThreadDelivery::schedule(std::shared_ptr<OutputQueue> queue)
{
    const std::lock_guard guard(m_lock);
    m_scheduled.push_back(std::move(queue));
    postLocked();
}

void MainThreadDelivery::stop()
{
    const std::lock_guard guard(m_lock);
    m_isStopped = true;
}

bool MainThreadDelivery::event(QEvent *event)
{
    bool isOurs = false;
    {
        // Orders the making of the event before its use for a thread checker, too, which does not see Qt's own locks.
        const std::lock_guard guard(m_lock);
        isOurs = event->type() == QEvent::User;
    }
    if (!isOurs)
        return QObject::event(event);
    deliverSlice();
    return true;
}

void MainThreadDelivery::deliverSlice()
{
    {
        const std::lock_guard guard(m_lock);
        m_isPosted = false;
    }
    const auto end = std::chrono::steady_clock::now() + sliceLength;
    // A queue is out of the list while its handler runs: a handler that runs the event loop lets the other children
    // deliver, and its own child goes on, in order, after it has returned.
    while (const std::shared_ptr<OutputQueue> queue = takeNext()) {
        const bool isMore = queue->deliverNext();
        const bool isOver = std::chrono::steady_clock::now() >= end;
        const std::lock_guard guard(m_lock);
        if (isMore)
            m_scheduled.push_back(queue);
        if (isOver) {
            if (!m_scheduled.empty())
                postLocked();
            return;
        }
    }
}

std::shared_ptr<OutputQueue> MainThreadDelivery::takeNext()
{
    const std::lock_guard guard(m_lock);
    if (m_scheduled.empty() || m_isStopped)
        return nullptr;
    std::shared_ptr<OutputQueue> next = std::move(m_scheduled.front());
    m_scheduled.pop_front();
    if (!m_scheduled.empty())
        postLocked(); // for an event loop inside the handler
    return next;
}

void MainThreadDelivery::postLocked()
{
    if (!std::exchange(m_isPosted, true))
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}
