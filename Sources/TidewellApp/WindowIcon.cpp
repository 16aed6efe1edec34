#include "TidewellApp/WindowIcon.h"

#include <QFile>
#include <QPixmap>

using namespace Qt::StringLiterals;

QIcon WindowIcon::icon()
{
    QIcon icon;
#ifndef Q_OS_MACOS
    // Plain pixels: reading a picture file would load every image plugin before the window is first painted.
    for (const int size : {16, 32, 64}) {
        QFile file(u":/icon/window-%1.rgba"_s.arg(size));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray pixels = file.readAll();
        if (pixels.size() != qsizetype{4} * size * size)
            continue;
        const QImage image(reinterpret_cast<const uchar *>(pixels.constData()), size, size,
                           QImage::Format_RGBA8888_Premultiplied);
        icon.addPixmap(QPixmap::fromImage(image.convertToFormat(QImage::Format_ARGB32_Premultiplied)));
    }
#endif
    return icon;
}
