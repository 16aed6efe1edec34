#include "Look/RoundedFrame.h"

#include "Look/Colours.h"
#include "Screens/EventCount.h"
#include "Screens/Look/DarkPalette.h"
#include "Support/Waiting.h"

#include <QImage>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTest>

#include <gtest/gtest.h>

namespace
{

/// A scroll area with such a frame in a window, and pictures of it and of what it should be.
class FramedArea
{
public:
    FramedArea(RoundedFrame::Ground ground, const QPalette &palette)
    {
        m_window.setPalette(palette);
        m_window.resize(200, 120);
        area.setGeometry(20, 20, 100, 60);
        area.setFocusPolicy(Qt::StrongFocus);
        new RoundedFrame(ground, &area);
        m_window.show();
        m_window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_window));
        m_window.setFocus();
    }

    QImage picture() { return m_window.grab(area.geometry()).toImage(); }

    template <typename Draw>
    QImage expected(const Draw &draw) const
    {
        QImage image(area.size(), QImage::Format_RGB32);
        image.fill(m_window.palette().color(QPalette::Window));
        QPainter painter(&image);
        draw(painter, QRectF(area.rect()));
        painter.end();
        return image;
    }

    QWidget &window() { return m_window; }

private:
    QWidget m_window;

public:
    QScrollArea area{&m_window};
};

QPalette withRing(QPalette palette)
{
    palette.setColor(QPalette::Highlight, Qt::magenta);
    return palette;
}

} // namespace

TEST(RoundedFrame, OutlinesAFieldAlwaysWithItsRingWithinTheOutline)
{
    for (const QPalette &palette : {withRing(QPalette()), withRing(darkPalette())}) {
        FramedArea framed(RoundedFrame::Ground::field, palette);
        EXPECT_EQ(framed.area.lineWidth(), 3);
        const auto plain = [&](QPainter &painter, const QRectF &whole) {
            RoundedFrame::draw(painter, whole, 6, Colours::line(palette, 0.4F), palette.color(QPalette::Base));
        };
        EXPECT_EQ(framed.picture().convertToFormat(QImage::Format_RGB32), framed.expected(plain));
        framed.area.setFocus();
        EXPECT_EQ(framed.picture().convertToFormat(QImage::Format_RGB32),
                  framed.expected([&](QPainter &painter, const QRectF &whole) {
                      plain(painter, whole);
                      RoundedFrame::drawRing(painter, whole.adjusted(1, 1, -1, -1), 5, 2, palette);
                  }));
    }
}

TEST(RoundedFrame, OutlinesAPaneInTheDarkOnly)
{
    for (const QPalette &palette : {withRing(QPalette()), withRing(darkPalette())}) {
        FramedArea framed(RoundedFrame::Ground::pane, palette);
        EXPECT_EQ(framed.area.lineWidth(), 2);
        const auto plain = [&](QPainter &painter, const QRectF &whole) {
            const QColor outline = Colours::isDark(palette) ? Colours::line(palette, 0.25F) : QColor();
            RoundedFrame::draw(painter, whole, 6, outline, Colours::pane(palette));
        };
        EXPECT_EQ(framed.picture().convertToFormat(QImage::Format_RGB32), framed.expected(plain));
        framed.area.setFocus();
        EXPECT_EQ(framed.picture().convertToFormat(QImage::Format_RGB32),
                  framed.expected([&](QPainter &painter, const QRectF &whole) {
                      plain(painter, whole);
                      RoundedFrame::drawRing(painter, whole, 6, 2, palette);
                  }));
    }
}

TEST(RoundedFrame, LosesItsRingWithTheFocus)
{
    FramedArea framed(RoundedFrame::Ground::field, withRing(QPalette()));
    const QImage before = framed.picture();
    framed.area.setFocus();
    EXPECT_NE(framed.picture(), before);
    framed.window().setFocus();
    framed.area.clearFocus();
    EXPECT_EQ(framed.picture(), before);
}

TEST(RoundedFrame, IsDrawnAnewWithoutBeingAskedWhenTheFocusComesAndGoes)
{
    FramedArea framed(RoundedFrame::Ground::field, withRing(QPalette()));
    const EventCount paints(framed.area, QEvent::Paint);
    EXPECT_TRUE(waitUntil([&] { return paints.count() > 0; }));
    // Until nothing is left to paint.
    for (int before = -1; before != paints.count();) {
        before = paints.count();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    for (QWidget *focused : {static_cast<QWidget *>(&framed.area), &framed.window()}) {
        const int before = paints.count();
        focused->setFocus();
        EXPECT_TRUE(waitUntil([&] { return paints.count() > before; }));
    }
}

TEST(RoundedFrame, HasARingOfWholePixelsWithinItsRectangleAtEveryScale)
{
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        QImage image((QSizeF(44, 34) * scale).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::white);
        QPainter painter(&image);
        RoundedFrame::drawRing(painter, QRectF(4, 4, 32, 24), 6, 2, withRing(QPalette()));
        painter.end();
        const int left = qRound(4 * scale);
        const int right = qRound(36 * scale);
        const int width = static_cast<int>(2 * scale);
        for (int x = 0; x < image.width(); ++x) {
            const bool isRing = (x >= left && x < left + width) || (x < right && x >= right - width);
            EXPECT_EQ(image.pixelColor(x, image.height() / 2), QColor(isRing ? Qt::magenta : Qt::white))
                << x << " at scale " << scale;
        }
        EXPECT_EQ(image.pixelColor(left, left), QColor(Qt::white)) << "its corners are round";
    }
}
