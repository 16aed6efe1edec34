#include "Look/NestedLoops.h"

#include <QThread>
#include <QTimer>
#include <QWidget>

#include <chrono>

namespace
{

constexpr std::chrono::milliseconds untilNextLook{20};

bool isInNestedLoop()
{
    return QThread::currentThread()->loopLevel() > 1;
}

} // namespace

void NestedLoops::deleteAfter(QWidget *widget)
{
    if (!isInNestedLoop()) {
        widget->deleteLater();
        return;
    }
    for (QWidget *below : widget->findChildren<QWidget *>()) {
        if (below->isWindow() && below->isVisible())
            below->close();
    }
    QTimer::singleShot(untilNextLook, widget, [widget] { deleteAfter(widget); });
}
