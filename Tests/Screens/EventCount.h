#pragma once

// How often an object was sent an event of a kind.

#include <QEvent>
#include <QObject>

class EventCount : public QObject
{
public:
    EventCount(QObject &object, QEvent::Type type) : m_type(type) { object.installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        m_count += event->type() == m_type ? 1 : 0;
        return false;
    }

    int count() const { return m_count; }

private:
    const QEvent::Type m_type;
    int m_count = 0;
};
