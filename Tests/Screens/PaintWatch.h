#pragma once

// Notes what is painted inside a window, to show that nothing is painted without need.

#include <QApplication>
#include <QPaintEvent>
#include <QRegion>
#include <QTest>
#include <QWidget>

class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget &root) : m_root(root) { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::Paint && widget != nullptr && (widget == &m_root || m_root.isAncestorOf(widget))) {
            ++m_count;
            for (const QRect &rectangle : static_cast<QPaintEvent *>(event)->region())
                m_region += rectangle.translated(widget->mapTo(&m_root, QPoint()));
        }
        return false;
    }

    /// Paint events so far.
    int count() const { return m_count; }

    /// All that was painted so far lies within this widget.
    bool isWithin(const QWidget &widget) const
    {
        return (m_region - QRect(widget.mapTo(&m_root, QPoint()), widget.size())).isEmpty();
    }

private:
    QWidget &m_root;
    int m_count = 0;
    QRegion m_region;
};

/// Lets a window come to rest, however slow the machine: until nothing in it was painted for a tenth of a second.
inline void waitUntilPainted(QWidget &window)
{
    const PaintWatch watch(window);
    for (int before = -1; before != watch.count();) {
        before = watch.count();
        QTest::qWait(100);
    }
}
