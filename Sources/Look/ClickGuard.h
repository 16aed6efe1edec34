#pragma once

// Keeps the second of two quick clicks from what has just come under the resting pointer.

#include <QApplication>
#include <QElapsedTimer>
#include <QPoint>

class ClickGuard
{
public:
    /// Where the pointer clicked last, on the screen.
    const QPoint &place() const { return m_place; }
    void setPlace(QPoint place) { m_place = place; }

    /// Something else lies there now.
    void placeChanged() { m_sinceChange.start(); }

    /// True until the pointer has moved or a moment has passed.
    bool refuses(QPoint place) const
    {
        return m_sinceChange.isValid() && !m_sinceChange.hasExpired(QApplication::doubleClickInterval()) &&
               (place - m_place).manhattanLength() < QApplication::startDragDistance();
    }

private:
    QPoint m_place;
    QElapsedTimer m_sinceChange;
};
