#include "Look/IndeterminateProgress.h"

#include "Look/Colours.h"

#include <QPainter>
#include <QTimerEvent>

using namespace Qt::StringLiterals;

namespace
{

#ifndef Q_OS_MACOS
constexpr int barHeight = 6;
constexpr int stepsAcross = 45;
constexpr int millisecondsPerBarStep = 33;
constexpr double shareOfTheBar = 0.25;
#endif

constexpr int diameter = 16;
constexpr int spokes = 8;
constexpr int millisecondsPerSpoke = 100;

} // namespace

IndeterminateProgress::IndeterminateProgress(QWidget *parent) : QProgressBar(parent)
{
    setRange(0, 0);
    setTextVisible(false);
    setAccessibleName(u"In progress"_s);
}

void IndeterminateProgress::setMotion(int steps, int millisecondsPerStep)
{
    m_steps = steps;
    m_millisecondsPerStep = millisecondsPerStep;
}

void IndeterminateProgress::showEvent(QShowEvent *event)
{
    QProgressBar::showEvent(event);
    if (m_steps > 0)
        m_timer.start(m_millisecondsPerStep, this);
}

void IndeterminateProgress::hideEvent(QHideEvent *event)
{
    QProgressBar::hideEvent(event);
    m_timer.stop();
}

void IndeterminateProgress::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId()) {
        QProgressBar::timerEvent(event);
        return;
    }
    m_step = (m_step + 1) % m_steps;
    update();
}

IndeterminateBar::IndeterminateBar(QWidget *parent) : IndeterminateProgress(parent)
{
#ifndef Q_OS_MACOS
    setFixedHeight(barHeight);
    setMotion(stepsAcross, millisecondsPerBarStep);
#endif
}

void IndeterminateBar::paintEvent(QPaintEvent *event)
{
#ifdef Q_OS_MACOS
    QProgressBar::paintEvent(event);
#else
    Q_UNUSED(event)
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double radius = height() / 2.0;
    painter.setBrush(Colours::line(palette(), 0.25F));
    painter.drawRoundedRect(rect(), radius, radius);

    // It comes in at the left edge and leaves at the right one.
    const double length = width() * shareOfTheBar;
    const double left = (width() + length) * step() / stepsAcross - length;
    painter.setClipRect(rect());
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(QRectF(left, 0, length, height()), radius, radius);
#endif
}

Spinner::Spinner(QWidget *parent) : IndeterminateProgress(parent)
{
    setFixedSize(diameter, diameter);
    setMotion(spokes, millisecondsPerSpoke);
}

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(diameter / 2.0, diameter / 2.0);
    painter.rotate(360.0 / spokes * step());
    for (int spoke = 0; spoke < spokes; ++spoke) {
        QColor colour = Colours::secondary(palette());
        colour.setAlphaF((static_cast<float>(spoke) + 1.0F) / spokes);
        painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap));
        painter.rotate(360.0 / spokes);
        painter.drawLine(QPointF(0, -3.5), QPointF(0, -6.5));
    }
}
