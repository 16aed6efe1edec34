#include "Look/Rows/StatusDot.h"

#include <QPainter>

namespace
{

QColor filling(StatusDot::Colour colour)
{
    switch (colour) {
    case StatusDot::Colour::grey:
        return QColor::fromRgb(0x8e8e93);
    case StatusDot::Colour::red:
        return QColor::fromRgb(0xff3b30);
    case StatusDot::Colour::orange:
        return QColor::fromRgb(0xff9500);
    case StatusDot::Colour::yellow:
        return QColor::fromRgb(0xffcc00);
    case StatusDot::Colour::green:
        return QColor::fromRgb(0x34c759);
    }
    Q_UNREACHABLE();
}

} // namespace

StatusDot::StatusDot(int diameter, QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setFixedSize(diameter, diameter);
}

void StatusDot::setState(Colour colour, const QString &words)
{
    if (accessibleName() != words) {
        setAccessibleName(words);
        setToolTip(words);
    }
    if (m_colour != colour) {
        m_colour = colour;
        update();
    }
}

void StatusDot::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor colour = filling(m_colour);
    // The darker rim keeps yellow visible on white.
    painter.setPen(colour.darker(125));
    painter.setBrush(colour);
    painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}
