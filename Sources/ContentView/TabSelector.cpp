#include "ContentView/TabSelector.h"

#include "Look/Colours.h"

#include <QPainter>

namespace
{

constexpr int segmentPadding = 18;
constexpr int segmentHeight = 26;
constexpr double stripRadius = 7;
constexpr double segmentRadius = 5;

} // namespace

TabSelector::TabSelector(QWidget *parent) : QTabBar(parent)
{
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TabSelector::tabSizeHint(int index) const
{
    return {fontMetrics().horizontalAdvance(tabText(index)) + 2 * segmentPadding,
            std::max(segmentHeight, fontMetrics().height() + 8)};
}

QSize TabSelector::minimumTabSizeHint(int index) const
{
    return tabSizeHint(index);
}

void TabSelector::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isDark = Colours::isDark(palette());

    const QColor strip = Colours::mixed(isDark ? Qt::white : Qt::black, palette().color(QPalette::Window), 0.08F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(strip);
    painter.drawRoundedRect(rect(), stripRadius, stripRadius);

    for (int index = 0; index < count(); ++index) {
        if (index == currentIndex()) {
            painter.setBrush(Colours::mixed(Qt::white, strip, isDark ? 0.22F : 1.0F));
            painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 2)
                                      : QPen(Colours::mixed(Qt::black, strip, 0.14F)));
            painter.drawRoundedRect(QRectF(tabRect(index)).adjusted(2, 2, -2, -2), segmentRadius, segmentRadius);
        }
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(tabRect(index), Qt::AlignCenter, tabText(index));
    }
}
