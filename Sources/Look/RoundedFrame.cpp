#include "Look/RoundedFrame.h"

#include "Look/Colours.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

constexpr double cornerRadius = 6;
constexpr int outlineThickness = 1;
constexpr int ringThickness = 2;

QColor outlineOf(RoundedFrame::Ground ground, const QPalette &palette)
{
    if (ground == RoundedFrame::Ground::field)
        return Colours::line(palette, 0.4F);
    // The tint can hardly be seen on a dark window; a faint line shows where the pane ends.
    return Colours::isDark(palette) ? Colours::line(palette, 0.25F) : QColor();
}

/// How far within the area's edge the ring begins: within the outline of a field, upon the faint one of a pane.
int ringInset(RoundedFrame::Ground ground)
{
    return ground == RoundedFrame::Ground::field ? outlineThickness : 0;
}

/// Draws within the rectangle, whose edges and whose outline are moved onto whole pixels.
void drawSharply(QPainter &painter, const QRectF &rectangle, double radius, const QColor &outline, int points,
                 const QBrush &ground)
{
    const QTransform toPixels = painter.deviceTransform();
    const double scale = toPixels.m11();
    const double pixels = std::max(1.0, std::floor(points * scale));
    const double inset = outline.isValid() ? pixels / 2 : 0;
    const QRectF exact = toPixels.mapRect(rectangle);
    const QRectF whole(QPointF(std::round(exact.left()), std::round(exact.top())),
                       QPointF(std::round(exact.right()), std::round(exact.bottom())));
    const QRectF line = toPixels.inverted().mapRect(whole.adjusted(inset, inset, -inset, -inset));

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(outline.isValid() ? QPen(outline, pixels / scale) : QPen(Qt::NoPen));
    painter.setBrush(ground);
    const double lineRadius = radius - inset / scale;
    painter.drawRoundedRect(line, lineRadius, lineRadius);
    painter.restore();
}

} // namespace

RoundedFrame::RoundedFrame(Ground ground, QAbstractScrollArea *area) : QObject(area), m_area(*area), m_ground(ground)
{
    // A frame of the area's own keeps the scroll bar within the rounded one.
    area->setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
    area->setLineWidth(ringInset(ground) + ringThickness);
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

void RoundedFrame::draw(QPainter &painter, const QRectF &rectangle, double radius, const QColor &outline,
                        const QColor &ground)
{
    drawSharply(painter, rectangle, radius, outline, outlineThickness, ground.isValid() ? QBrush(ground) : QBrush());
}

void RoundedFrame::drawRing(QPainter &painter, const QRectF &rectangle, double radius, int thickness,
                            const QPalette &palette)
{
    drawSharply(painter, rectangle, radius, palette.color(QPalette::Highlight), thickness, Qt::NoBrush);
}

void RoundedFrame::paint() const
{
    const QPalette &palette = m_area.palette();
    QPainter painter(&m_area);
    const QRectF whole = m_area.rect();
    draw(painter, whole, cornerRadius, outlineOf(m_ground, palette),
         m_ground == Ground::pane ? Colours::pane(palette) : palette.color(QPalette::Base));
    if (!m_area.hasFocus())
        return;
    const int inset = ringInset(m_ground);
    drawRing(painter, whole.adjusted(inset, inset, -inset, -inset), cornerRadius - inset, ringThickness, palette);
}
