#include "Look/RoundedFrame.h"

#include "Look/Colours.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QPainter>

namespace
{

constexpr double cornerRadius = 6;
constexpr int frameThickness = 2;

QPen outlineOf(RoundedFrame::Ground ground, const QWidget &area)
{
    const QPalette &palette = area.palette();
    if (area.hasFocus())
        return palette.color(QPalette::Highlight);
    if (ground == RoundedFrame::Ground::field)
        return Colours::line(palette, 0.4F);
    if (!Colours::isDark(palette))
        return Qt::NoPen;
    // The tint can hardly be seen on a dark window; a faint line shows where the pane ends.
    return Colours::line(palette, 0.25F);
}

} // namespace

RoundedFrame::RoundedFrame(Ground ground, QAbstractScrollArea *area) : QObject(area), m_area(*area), m_ground(ground)
{
    // A frame of the area's own keeps the scroll bar within the rounded one.
    area->setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
    area->setLineWidth(frameThickness);
    area->viewport()->setAutoFillBackground(false);
    area->installEventFilter(this);
}

bool RoundedFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint) {
        paint();
        return true;
    }
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        m_area.update();
    return QObject::eventFilter(watched, event);
}

void RoundedFrame::paint() const
{
    const QPalette &palette = m_area.palette();
    QPainter painter(&m_area);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(outlineOf(m_ground, m_area));
    painter.setBrush(m_ground == Ground::pane ? Colours::pane(palette) : palette.color(QPalette::Base));
    painter.drawRoundedRect(QRectF(m_area.rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}
