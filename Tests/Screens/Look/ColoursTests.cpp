#include "Look/Colours.h"
#include "Look/RoundedFrame.h"
#include "Screens/Look/DarkPalette.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

/// The light palette of Qt's own style, as it is outside any desktop environment.
QPalette lightPalette()
{
    QPalette palette(QColor::fromRgb(0xefefef));
    palette.setColor(QPalette::Window, QColor::fromRgb(0xefefef));
    palette.setColor(QPalette::WindowText, Qt::black);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Text, Qt::black);
    return palette;
}

/// A dark palette whose window is as light as those of the common dark themes are at most.
QPalette slatePalette()
{
    QPalette palette = darkPalette();
    palette.setColor(QPalette::Window, QColor::fromRgb(0x383838));
    palette.setColor(QPalette::WindowText, QColor::fromRgb(0xeeeeec));
    palette.setColor(QPalette::Base, QColor::fromRgb(0x2d2d2d));
    palette.setColor(QPalette::Text, QColor::fromRgb(0xeeeeec));
    return palette;
}

/// Which of the three colours the pixels of the middle row have, run by run; any other colour is 'x'.
QString runsAcross(const QImage &image, const QColor &outline, const QColor &ground)
{
    QString runs;
    for (int x = 0; x < image.width(); ++x) {
        const QColor colour = image.pixelColor(x, image.height() / 2);
        QChar kind = u'x';
        if (colour == outline)
            kind = u'o';
        else if (colour == ground)
            kind = u'g';
        else if (colour == Qt::white)
            kind = u' ';
        if (kind == u'o' || runs.isEmpty() || runs.back() != kind)
            runs += kind;
    }
    return runs;
}

} // namespace

TEST(Colours, MeasureContrastFromOneToTwentyOne)
{
    EXPECT_DOUBLE_EQ(Colours::contrast(Qt::white, Qt::white), 1);
    EXPECT_NEAR(Colours::contrast(Qt::white, Qt::black), 21, 1e-9);
    EXPECT_NEAR(Colours::contrast(QColor::fromRgb(0x777777), Qt::white), 4.48, 0.01);
}

TEST(Colours, AreReadableAsTextOnEveryGround)
{
    struct Text {
        const char *name;
        ColourOfPalette colour;
    };
    const Text texts[] = {{"primary", Colours::primary}, {"secondary", Colours::secondary},
                          {"red", Colours::red},         {"orange", Colours::orange},
                          {"green", Colours::green},     {"purple", Colours::purple}};
    for (const QPalette &palette : {lightPalette(), darkPalette(), slatePalette()}) {
        const QColor window = palette.color(QPalette::Window);
        for (const QColor &ground :
             {window, Colours::pane(palette), palette.color(QPalette::Base), Colours::found(palette)}) {
            for (const Text &text : texts) {
                EXPECT_GE(Colours::contrast(text.colour(palette), ground), Colours::readable)
                    << text.name << " on " << ground.name().toStdString() << " in a window of "
                    << window.name().toStdString();
            }
        }
        EXPECT_GE(Colours::contrast(Colours::placeholder(palette), palette.color(QPalette::Base)), Colours::readable);
    }
}

TEST(Colours, HaveTheHueThatTheyAreCalledInLightAndDark)
{
    for (const QPalette &palette : {lightPalette(), darkPalette(), slatePalette()}) {
        EXPECT_NEAR(Colours::red(palette).hslHue(), 4, 6);
        EXPECT_NEAR(Colours::orange(palette).hslHue(), 30, 6);
        EXPECT_NEAR(Colours::green(palette).hslHue(), 134, 10);
        EXPECT_NEAR(Colours::purple(palette).hslHue(), 275, 10);
        EXPECT_LT(Colours::contrast(Colours::secondary(palette), palette.color(QPalette::Window)),
                  0.8 * Colours::contrast(Colours::primary(palette), palette.color(QPalette::Window)))
            << "dimmed";
    }
}

TEST(Colours, AreTheirOwnInLightAndInDark)
{
    struct Pair {
        ColourOfPalette colour;
        QRgb light;
        QRgb dark;
    };
    for (const auto &[colour, light, dark] :
         {Pair{Colours::red, 0xb3150c, 0xff7b72}, Pair{Colours::orange, 0x8f4700, 0xffa657},
          Pair{Colours::green, 0x0f6425, 0x56d364}, Pair{Colours::purple, 0x7a2ba8, 0xd2a8ff},
          Pair{Colours::found, 0xffe066, 0x403500}}) {
        EXPECT_EQ(colour(lightPalette()), QColor::fromRgb(light));
        EXPECT_EQ(colour(darkPalette()), QColor::fromRgb(dark));
    }
    EXPECT_TRUE(Colours::isDark(QPalette(QColor::fromRgb(0x7e7e7e)))) << "a window is dark below the middle";
    EXPECT_FALSE(Colours::isDark(QPalette(QColor::fromRgb(0x818181))));
}

TEST(Colours, MixOneOverAnotherByItsShare)
{
    EXPECT_EQ(Colours::mixed(Qt::black, Qt::white, 0.25F).rgb(), QColor::fromRgb(0xbfbfbf).rgb());
    EXPECT_EQ(Colours::mixed(Qt::red, Qt::blue, 1).rgb(), QColor(Qt::red).rgb());
    EXPECT_EQ(Colours::pane(QPalette(Qt::white)).rgb(), QColor::fromRgb(0xf0f0f0).rgb()) << "6 % of black";
}

TEST(Colours, LeaveAThemeItsOwnPlaceholderWhereItCanBeRead)
{
    QPalette dark = darkPalette();
    dark.setColor(QPalette::PlaceholderText, QColor(255, 255, 255, 160));
    EXPECT_EQ(Colours::placeholder(dark), QColor(255, 255, 255, 160));
    dark.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    EXPECT_GT(Colours::placeholder(dark).lightnessF(), 0.5F);
}

TEST(RoundedFrame, IsSharpAtEveryScale)
{
    const QColor outline = QColor::fromRgb(0x404040);
    const QColor ground = QColor::fromRgb(0xc0c0c0);
    const std::pair<double, QString> expected[] = {
        {1, u" ogo "_s}, {1.25, u" ogo "_s}, {1.5, u" ogo "_s}, {2, u" oogoo "_s}};
    for (const auto &[scale, runs] : expected) {
        QImage image((QSizeF(40, 30) * scale).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::white);
        QPainter painter(&image);
        RoundedFrame::draw(painter, QRectF(3, 3, 29, 23), 6, outline, ground);
        painter.end();
        EXPECT_EQ(runsAcross(image, outline, ground), runs) << "at scale " << scale;
    }
}

TEST(RoundedFrame, RoundsItsCornersBySixPoints)
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    const QColor outline = QColor::fromRgb(0x404040);
    RoundedFrame::draw(painter, image.rect(), 6, outline, outline);
    painter.end();
    // The outline's arc has left the edge by then, and is back at it six points from the corner.
    for (const int near : {0, 1}) {
        EXPECT_EQ(image.pixelColor(near, 0), Qt::white);
        EXPECT_EQ(image.pixelColor(0, near), Qt::white);
        EXPECT_EQ(image.pixelColor(39 - near, 29), Qt::white);
    }
    for (const int far : {7, 15}) {
        EXPECT_EQ(image.pixelColor(far, 0), outline);
        EXPECT_EQ(image.pixelColor(39, far), outline);
    }
}
