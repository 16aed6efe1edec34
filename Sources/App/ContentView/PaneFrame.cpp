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
    painter.setPen(pane.hasFocus() ? QPen(pane.palette().color(QPalette::Highlight)) : QPen(Qt::NoPen));
    painter.setBrush(Colours::paneTint());
    painter.drawRoundedRect(QRectF(pane.rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}
