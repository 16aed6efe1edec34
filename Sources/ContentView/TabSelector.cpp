#include "ContentView/TabSelector.h"

#include "ContentView/TabSelectorAccessibility.h"
#include "Look/Colours.h"
#include "Look/RoundedFrame.h"

#include <QPainter>
#include <QWheelEvent>

namespace
{

constexpr int segmentPadding = 18;
constexpr int segmentHeight = 26;
constexpr double stripRadius = 7;
constexpr double segmentRadius = 6;
constexpr int margin = 1;
constexpr int ringThickness = 2;

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

void TabSelector::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void TabSelector::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const bool isDark = Colours::isDark(palette());

    const QColor strip = Colours::mixed(isDark ? Qt::white : Qt::black, palette().color(QPalette::Window), 0.08F);
    RoundedFrame::draw(painter, rect(), stripRadius, {}, strip);

    for (int index = 0; index < count(); ++index) {
        if (index == currentIndex()) {
            const QRectF segment = QRectF(tabRect(index)).adjusted(margin, margin, -margin, -margin);
            RoundedFrame::draw(painter, segment, segmentRadius, Colours::mixed(Qt::black, strip, 0.14F),
                               Colours::mixed(Qt::white, strip, isDark ? 0.22F : 1.0F));
            if (hasFocus())
                RoundedFrame::drawRing(painter, segment, segmentRadius, ringThickness, palette());
        }
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(tabRect(index), Qt::AlignCenter, tabText(index));
    }
}
