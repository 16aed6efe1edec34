#include "ContentView/TabSelector.h"

#include "ContentView/TabSelectorAccessibility.h"
#include "Look/Colours.h"

#include <QPainter>

namespace
{

constexpr int segmentPadding = 18;
constexpr int segmentHeight = 26;
constexpr double stripRadius = 7;
constexpr double segmentRadius = 5;

} // namespace

TabStop::TabStop(TabSelector *selector) : QWidget(selector)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

TabSelector &TabStop::selector() const
{
    return *static_cast<TabSelector *>(parentWidget());
}

int TabStop::index() const
{
    return static_cast<int>(selector().stops().indexOf(this));
}

TabSelector::TabSelector(QWidget *parent) : QTabBar(parent)
{
    TabSelectorAccessibility::install();
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QTabBar::currentChanged, this, &TabSelector::followSelection);
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

void TabSelector::tabInserted(int index)
{
    m_stops.insert(index, new TabStop(this));
    followSelection();
    tabLayoutChange();
}

void TabSelector::tabLayoutChange()
{
    for (TabStop *stop : m_stops)
        stop->setGeometry(tabRect(stop->index()));
}

void TabSelector::followSelection()
{
    TabStop *selected = m_stops.value(currentIndex());
    if (selected == nullptr)
        return;
    const QWidget *focused = window()->focusWidget();
    const bool isFocused = focused != nullptr && focused->parentWidget() == this;
    for (TabStop *stop : m_stops)
        stop->setFocusPolicy(stop == selected ? focusPolicy() : Qt::NoFocus);
    setFocusProxy(selected);
    if (isFocused)
        selected->setFocus(Qt::OtherFocusReason);
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
