#include "Look/Typography.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>

#include <algorithm>
#include <cmath>

namespace
{

constexpr double macOSBodySize = 13;
/// Smaller text than this cannot be read on an ordinary screen, whatever the system's font.
constexpr int smallestReadable = 10;

QFont ofMacOSSize(double size)
{
    QFont font = Typography::body();
    const double scaled = QFontInfo(font).pixelSize() * size / macOSBodySize;
    font.setPixelSize(std::max(smallestReadable, static_cast<int>(std::lround(scaled))));
    return font;
}

} // namespace

QFont Typography::body()
{
    return QApplication::font();
}

QFont Typography::headline()
{
    QFont font = body();
    font.setBold(true);
    return font;
}

QFont Typography::callout()
{
    return ofMacOSSize(12);
}

QFont Typography::caption()
{
    return ofMacOSSize(10);
}

QFont Typography::smallestCaption()
{
    return ofMacOSSize(10);
}

QFont Typography::monospaced(int points)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(points);
    return font;
}
