#include "Look/Spinner.h"

#include "Look/Colours.h"

#include <QPainter>
#include <QTimerEvent>

using namespace Qt::StringLiterals;

namespace
{

constexpr int diameter = 16;
constexpr int spokes = 8;
constexpr int millisecondsPerStep = 100;

} // namespace

Spinner::Spinner(QWidget *parent) : QProgressBar(parent)
{
    setRange(0, 0);
    setTextVisible(false);
    setAccessibleName(u"In progress"_s);
    setFixedSize(diameter, diameter);
}

void Spinner::showEvent(QShowEvent *event)
{
    QProgressBar::showEvent(event);
    m_turn.start(millisecondsPerStep, this);
}

void Spinner::hideEvent(QHideEvent *event)
{
    QProgressBar::hideEvent(event);
    m_turn.stop();
}

void Spinner::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_turn.timerId()) {
        QProgressBar::timerEvent(event);
        return;
    }
    m_step = (m_step + 1) % spokes;
    update();
}

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(diameter / 2.0, diameter / 2.0);
    painter.rotate(360.0 / spokes * m_step);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        QColor colour = Colours::secondary(palette());
        colour.setAlphaF((static_cast<float>(spoke) + 1.0F) / spokes);
        painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap));
        painter.rotate(360.0 / spokes);
        painter.drawLine(QPointF(0, -3.5), QPointF(0, -6.5));
    }
}
