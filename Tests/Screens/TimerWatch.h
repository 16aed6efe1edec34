#pragma once

// Finds the timer that ticks at an interval, to show that there is one, and that it rests when nothing needs it: one
// that went on would keep waking an idle application.

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QTimer>

#include <chrono>

class TimerWatch : public QObject
{
public:
    explicit TimerWatch(std::chrono::milliseconds interval) : m_interval(interval) { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *timer = event->type() == QEvent::Timer ? qobject_cast<QTimer *>(watched) : nullptr;
        if (timer != nullptr && timer->intervalAsDuration() == m_interval)
            m_timer = timer;
        return false;
    }

    /// Null until it has ticked.
    const QTimer *timer() const { return m_timer; }

private:
    const std::chrono::milliseconds m_interval;
    QPointer<QTimer> m_timer;
};
