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

/// The system's font in its monospaced design. Where Qt's own choice is the user's font of fixed pitch, and the
/// system's can be asked for by no name, its file tells its family.
QFont systemMonospaced()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
#ifdef Q_OS_MACOS
    static const QStringList families = QFontDatabase::applicationFontFamilies(
        QFontDatabase::addApplicationFont(QStringLiteral("/System/Library/Fonts/SFNSMono.ttf")));
    if (!families.isEmpty())
        font.setFamilies({families.first()});
#endif
    return font;
}

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
    QFont font = systemMonospaced();
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(points);
    return font;
}
