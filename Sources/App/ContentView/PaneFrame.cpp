#include "ContentView/PaneFrame.h"

#include "ContentView/Colours.h"

#include <QPainter>
#include <QWidget>

namespace
{

constexpr double cornerRadius = 6;

} // namespace

void PaneFrame::paint(QWidget &pane)
{
    QPainter painter(&pane);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette palette = pane.palette();
    painter.setPen(pane.hasFocus() ? QPen(palette.color(QPalette::Highlight)) : QPen(Qt::NoPen));
    painter.setBrush(Colours::paneTint(palette));
    painter.drawRoundedRect(QRectF(pane.rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}
