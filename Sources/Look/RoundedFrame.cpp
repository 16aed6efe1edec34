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

/// A rectangle whose edges are moved onto whole pixels of the screen, and lines of whole pixels within it.
class SharpRectangle
{
public:
    SharpRectangle(const QPainter &painter, const QRectF &rectangle) : m_toPixels(painter.deviceTransform())
    {
        const QRectF exact = m_toPixels.mapRect(rectangle);
        m_pixels = QRectF(QPointF(std::round(exact.left()), std::round(exact.top())),
                          QPointF(std::round(exact.right()), std::round(exact.bottom())));
    }

    /// How wide a line of so many points is: whole pixels, in points.
    double lineWidth(int points) const { return std::max(1.0, std::floor(points * scale())) / scale(); }

    QRectF insetBy(double points) const
    {
        const double pixels = points * scale();
        return m_toPixels.inverted().mapRect(m_pixels.adjusted(pixels, pixels, -pixels, -pixels));
    }

private:
    double scale() const { return m_toPixels.m11(); }

    QTransform m_toPixels;
    QRectF m_pixels;
};

void drawRounded(QPainter &painter, const QRectF &rectangle, double radius, const QPen &pen, const QBrush &brush)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(pen);
    painter.setBrush(brush);
    painter.drawRoundedRect(rectangle, radius, radius);
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
    if (event->type() != QEvent::Paint)
        return QObject::eventFilter(watched, event);
    paint();
    return true;
}

void RoundedFrame::draw(QPainter &painter, const QRectF &rectangle, double radius, const QColor &outline,
                        const QColor &ground)
{
    const SharpRectangle sharp(painter, rectangle);
    if (!outline.isValid())
        return drawRounded(painter, sharp.insetBy(0), radius, Qt::NoPen, ground);
    // The ground upon the outline's colour: a line drawn around it would take ten times as long, and the window is full
    // of frames when it is first seen.
    const double width = sharp.lineWidth(outlineThickness);
    drawRounded(painter, sharp.insetBy(0), radius, Qt::NoPen, outline);
    drawRounded(painter, sharp.insetBy(width), radius - width, Qt::NoPen, ground);
}

void RoundedFrame::drawRing(QPainter &painter, const QRectF &rectangle, double radius, int thickness,
                            const QPalette &palette)
{
    const SharpRectangle sharp(painter, rectangle);
    const double width = sharp.lineWidth(thickness);
    drawRounded(painter, sharp.insetBy(width / 2), radius - width / 2, QPen(palette.color(QPalette::Highlight), width),
                Qt::NoBrush);
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
