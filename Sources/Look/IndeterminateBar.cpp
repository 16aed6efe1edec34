#include "Look/IndeterminateBar.h"

#include "Look/Colours.h"

#include <QPainter>
#include <QTimerEvent>

using namespace Qt::StringLiterals;

IndeterminateBar::IndeterminateBar(QWidget *parent) : QProgressBar(parent)
{
    setRange(0, 0);
    setTextVisible(false);
    setAccessibleName(u"In progress"_s);
#ifndef Q_OS_MACOS
    setFixedHeight(6);
#endif
}

#ifndef Q_OS_MACOS

namespace
{

constexpr int millisecondsPerStep = 33;
constexpr int stepsAcross = 45;
constexpr double shareOfTheBar = 0.25;

} // namespace

void IndeterminateBar::showEvent(QShowEvent *event)
{
    QProgressBar::showEvent(event);
    m_turn.start(millisecondsPerStep, this);
}

void IndeterminateBar::hideEvent(QHideEvent *event)
{
    QProgressBar::hideEvent(event);
    m_turn.stop();
}

void IndeterminateBar::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_turn.timerId()) {
        QProgressBar::timerEvent(event);
        return;
    }
    m_step = (m_step + 1) % stepsAcross;
    update();
}

void IndeterminateBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double radius = height() / 2.0;
    painter.setBrush(Colours::line(palette(), 0.25F));
    painter.drawRoundedRect(rect(), radius, radius);

    // It comes in at the left edge and leaves at the right one.
    const double length = width() * shareOfTheBar;
    const double left = (width() + length) * m_step / stepsAcross - length;
    painter.setClipRect(rect());
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(QRectF(left, 0, length, height()), radius, radius);
}

#endif
