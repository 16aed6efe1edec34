#include "Look/Colours.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace
{

QColor toned(const QPalette &palette, QRgb onLight, QRgb onDark)
{
    return QColor::fromRgb(Colours::isDark(palette) ? onDark : onLight);
}

double luminance(const QColor &colour)
{
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

} // namespace

bool Colours::isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightnessF() < 0.5F;
}

QColor Colours::primary(const QPalette &palette)
{
    return palette.color(QPalette::WindowText);
}

QColor Colours::secondary(const QPalette &palette)
{
    return mixed(primary(palette), palette.color(QPalette::Window), 0.66F);
}

QColor Colours::placeholder(const QPalette &palette)
{
    const QColor own = palette.color(QPalette::PlaceholderText);
    const QColor field = palette.color(QPalette::Base);
    const QColor seen = mixed(own, field, own.alphaF());
    if (contrast(seen, field) >= readable)
        return own;
    return mixed(palette.color(QPalette::Text), field, 0.55F);
}

QColor Colours::red(const QPalette &palette)
{
    return toned(palette, 0xb3150c, 0xff7b72);
}

QColor Colours::orange(const QPalette &palette)
{
    return toned(palette, 0x8f4700, 0xffa657);
}

QColor Colours::green(const QPalette &palette)
{
    return toned(palette, 0x0f6425, 0x56d364);
}

QColor Colours::purple(const QPalette &palette)
{
    return toned(palette, 0x7a2ba8, 0xd2a8ff);
}

double Colours::contrast(const QColor &one, const QColor &other)
{
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QColor Colours::mixed(const QColor &over, const QColor &under, float share)
{
    const auto channel = [share](float upper, float lower) { return upper * share + lower * (1 - share); };
    return QColor::fromRgbF(channel(over.redF(), under.redF()), channel(over.greenF(), under.greenF()),
                            channel(over.blueF(), under.blueF()));
}

QColor Colours::line(const QPalette &palette, float share)
{
    return mixed(secondary(palette), palette.color(QPalette::Window), share);
}

QColor Colours::pane(const QPalette &palette)
{
    return mixed(Qt::black, palette.color(QPalette::Window), 0.06F);
}

QColor Colours::found(const QPalette &palette)
{
    return toned(palette, 0xffe066, 0x403500);
}

ColourFollower::ColourFollower(QPalette::ColorRole role, ColourOfPalette colour, QWidget *widget)
    : QObject(widget),
      m_widget(*widget),
      m_role(role),
      m_colour(colour)
{
    widget->installEventFilter(this);
    apply();
}

void ColourFollower::setColour(ColourOfPalette colour)
{
    m_colour = colour;
    apply();
}

bool ColourFollower::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
        apply();
    return QObject::eventFilter(watched, event);
}

void ColourFollower::apply()
{
    // The palette around, because the widget's own has the colour already in it.
    const QWidget *parent = m_widget.parentWidget();
    const QPalette around = parent != nullptr ? parent->palette() : QApplication::palette();
    const QColor colour = m_colour(around);
    const QColor disabled = around.color(QPalette::Disabled, m_role);
    const QPalette before = m_widget.palette();
    if (before.color(QPalette::Active, m_role) == colour && before.color(QPalette::Disabled, m_role) == disabled)
        return;
    QPalette own;
    own.setColor(m_role, colour);
    own.setColor(QPalette::Disabled, m_role, disabled);
    m_widget.setPalette(own);
}
