#include "ContentView/Colours.h"

#include <QPalette>

namespace
{

QColor toned(const QPalette &palette, QRgb onLight, QRgb onDark)
{
    return QColor::fromRgb(Colours::isDark(palette) ? onDark : onLight);
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
    const QColor text = primary(palette);
    const QColor window = palette.color(QPalette::Window);
    const float share = 0.66F;
    const auto mixed = [share](float over, float under) { return over * share + under * (1 - share); };
    return QColor::fromRgbF(mixed(text.redF(), window.redF()), mixed(text.greenF(), window.greenF()),
                            mixed(text.blueF(), window.blueF()));
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

QColor Colours::forKind(OutputKind kind, const QPalette &palette)
{
    switch (kind) {
    case OutputKind::out:
        return primary(palette);
    case OutputKind::err:
        return red(palette);
    case OutputKind::info:
        return secondary(palette);
    case OutputKind::ok:
        return green(palette);
    case OutputKind::fail:
        return purple(palette);
    case OutputKind::warn:
        return orange(palette);
    }
    Q_UNREACHABLE();
}

QColor Colours::paneTint()
{
    QColor tint = Qt::black;
    tint.setAlphaF(0.06F);
    return tint;
}
