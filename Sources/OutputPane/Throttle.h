#pragma once

#include <QTimer>

#include <chrono>
#include <functional>
#include <utility>

/// Does something when asked, but at most once in an interval: what is asked for too early is done once, when the
/// interval is over. Main thread.
class Throttle
{
public:
    /// What `action` refers to must outlive this.
    Throttle(std::chrono::milliseconds interval, std::function<void()> action) : m_action(std::move(action))
    {
        m_pause.setSingleShot(true);
        m_pause.setInterval(interval);
        QObject::connect(&m_pause, &QTimer::timeout, &m_pause, [this] {
            if (std::exchange(m_isAsked, false))
                request();
        });
    }

    void request()
    {
        if (m_pause.isActive()) {
            m_isAsked = true;
            return;
        }
        m_pause.start();
        m_action();
    }

private:
    const std::function<void()> m_action;
    QTimer m_pause;
    bool m_isAsked = false;
};
