#include "Look/PaneFrame.h"

#include "Look/Colours.h"

#include <QPainter>
#include <QWidget>

namespace
{

constexpr double cornerRadius = 6;

QPen outline(const QWidget &pane)
{
    const QPalette &palette = pane.palette();
    if (pane.hasFocus())
        return palette.color(QPalette::Highlight);
    if (!Colours::isDark(palette))
        return Qt::NoPen;
    // The tint can hardly be seen on a dark window; a faint line shows where the pane ends.
    return Colours::line(palette, 0.25F);
}

} // namespace

void PaneFrame::paint(QWidget &pane)
{
    QPainter painter(&pane);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(outline(pane));
    painter.setBrush(Colours::pane(pane.palette()));
    painter.drawRoundedRect(QRectF(pane.rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}
