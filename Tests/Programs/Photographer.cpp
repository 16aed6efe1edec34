#include "Programs/Photographer.h"

#include "App/MainWindow.h"
#include "Screens/TestWindow.h"

#include <QDialog>
#include <QDir>
#include <QPainter>

#include <array>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace
{

QPalette darkPalette()
{
    const QColor window = QColor::fromRgb(0x2a2a2c);
    const QColor text = QColor::fromRgb(0xececec);
    QPalette palette(QColor::fromRgb(0x3d3d40), window);
    palette.setColor(QPalette::Base, QColor::fromRgb(0x1e1e20));
    palette.setColor(QPalette::Highlight, QColor::fromRgb(0x3a7bd5));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, QColor::fromRgb(0x7d7d80));
    }
    palette.setColor(QPalette::PlaceholderText, QColor::fromRgb(0x8d8d90));
    return palette;
}

} // namespace

Photographer::Photographer(const QString &folder) : m_folder(folder)
{
    QDir().mkpath(folder);
}

void Photographer::take(QMainWindow &window, const QString &name) const
{
    const std::array<std::pair<QString, QSize>, 2> sizes{{{u"small"_s, {820, 640}}, {u"large"_s, {1600, 1000}}}};
    for (const auto &[size, extent] : sizes) {
        window.resize(extent + QSize(0, window.height() - window.centralWidget()->height()));
        for (const auto &[tone, palette] : {std::pair{u"light"_s, m_light}, std::pair{u"dark"_s, darkPalette()}}) {
            QApplication::setPalette(palette);
            QTest::qWait(60);
            QPixmap picture = window.grab();
            for (QDialog *dialog : window.findChildren<QDialog *>()) {
                if (!dialog->isVisible())
                    continue;
                QPainter painter(&picture);
                painter.drawPixmap((window.width() - dialog->width()) / 2, 90, dialog->grab());
            }
            picture.save(u"%1/%2-%3-%4.png"_s.arg(m_folder, name, size, tone));
        }
        QApplication::setPalette(m_light);
    }
    std::printf("%s\n", qUtf8Printable(name));
}

void showWindow(TestWindow &tools, MainWindow &window, const std::function<bool()> &isReady)
{
    window.show();
    if (!waitUntil([&] { return tools.setup.state() != OrbState::checking && isReady(); }))
        std::printf("  (not ready)\n");
}
