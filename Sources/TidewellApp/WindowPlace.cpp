#include "TidewellApp/WindowPlace.h"

#include <QScreen>
#include <QSettings>
#include <QStyle>
#include <QWidget>

void WindowPlace::restore(QWidget &window, const QString &key, QSize usual)
{
    const QStyle &style = *window.style();
    // The frame that the system will put around is not known yet.
    const int titleBar =
        style.pixelMetric(QStyle::PM_TitleBarHeight) + 2 * style.pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    window.resize(usual.boundedTo(window.screen()->availableSize() - QSize(0, titleBar)));
    // Brings a window whose screen is gone back onto one that is there.
    window.restoreGeometry(QSettings().value(key).toByteArray());
}

void WindowPlace::remember(const QWidget &window, const QString &key)
{
    QSettings().setValue(key, window.saveGeometry());
}
