#pragma once

#include <QPalette>

/// The palette of a dark theme.
inline QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor::fromRgb(0x202020));
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::Base, QColor::fromRgb(0x181818));
    palette.setColor(QPalette::Text, Qt::white);
    return palette;
}
