#pragma once

// An application that knows when a widget has been painted and its window handed over to the system: that is a frame.

#include <QApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QPointer>
#include <QWidget>

#include <chrono>
#include <utility>

class FrameWatch : public QApplication
{
public:
    using QApplication::QApplication;

    /// Counts the frames in which this widget is painted as a whole, from now on.
    void watch(QWidget *widget)
    {
        m_widget = widget;
        m_count = 0;
    }

    int count() const { return m_count; }
    std::chrono::steady_clock::time_point last() const { return m_last; }

    /// Turns the event loop until the watched widget was painted anew.
    void waitForFrame() { waitForFrameAfter(m_count); }

    /// The same, for a change that was made when so many frames had been painted.
    void waitForFrameAfter(int count)
    {
        while (m_count <= count)
            processEvents(QEventLoop::WaitForMoreEvents);
    }

    bool notify(QObject *receiver, QEvent *event) override
    {
        const bool isWatched = event->type() == QEvent::Paint && receiver == m_widget &&
                               static_cast<QPaintEvent *>(event)->rect().contains(m_widget->rect());
        ++m_depth;
        const bool result = QApplication::notify(receiver, event);
        --m_depth;
        m_isPainted = m_isPainted || isWatched;
        // The outermost event that painted has also flushed the window.
        if (m_depth == 0 && std::exchange(m_isPainted, false)) {
            ++m_count;
            m_last = std::chrono::steady_clock::now();
        }
        return result;
    }

private:
    QPointer<QWidget> m_widget;
    int m_count = 0;
    int m_depth = 0;
    bool m_isPainted = false;
    std::chrono::steady_clock::time_point m_last;
};
