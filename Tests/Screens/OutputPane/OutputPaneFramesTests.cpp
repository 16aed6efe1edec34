#include "Screens/OutputPane/OutputPaneTest.h"

#include "Look/Typography.h"

#include <QElapsedTimer>
#include <QScreen>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

/// Adds up how long a widget paints.
class PaintingTime : public QObject
{
public:
    explicit PaintingTime(QWidget &widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Paint || m_isPainting)
            return false;
        m_isPainting = true;
        QElapsedTimer timer;
        timer.start();
        QCoreApplication::sendEvent(watched, event);
        nanoseconds += timer.nsecsElapsed();
        ++count;
        m_isPainting = false;
        return true;
    }

    qint64 nanoseconds = 0;
    int count = 0;

private:
    bool m_isPainting = false;
};

} // namespace

TEST_F(OutputPaneTest, LeavesMostOfTheTimeToOutputThatTakesLongToPaint)
{
    pane.resize(700, 300);
    // Control characters, letters that no usual font has, and right-to-left words.
    const QString rare = u"\u0001\u07ca\ufffd\u0634\u0633\u0002\u1401\u05d0\u0003"_s;
    run.append(rare.repeated(10000), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    for (int count = 0; count < 10; ++count)
        pane.viewport()->repaint(); // opens the fonts of one script at least
    PaintingTime painting(*pane.viewport());
    pane.viewport()->repaint();
    // A quicker computer needs a larger pane for as long.
    for (int height = 600; painting.nanoseconds < 8'000'000 && height <= 2400; height *= 2) {
        pane.resize(2 * height, height);
        QApplication::processEvents();
        painting.nanoseconds = 0;
        pane.viewport()->repaint();
    }
    if (painting.nanoseconds < 8'000'000)
        GTEST_SKIP() << "nothing takes longer than half a frame to paint here";
    if (painting.nanoseconds > 120'000'000)
        GTEST_SKIP() << "it takes longer than a quarter of the longest frame here";

    painting.nanoseconds = painting.count = 0;
    QElapsedTimer timer;
    timer.start();
    while (painting.count < 10) {
        run.append(rare, OutputKind::out);
        QApplication::processEvents();
    }
    EXPECT_LE(painting.nanoseconds, timer.nsecsElapsed() / 3);
}

TEST_F(OutputPaneTest, ShowsOfItselfWhatAFrameHadNoTimeToOpenTheFontsFor)
{
    pane.resize(640, 500);
    const QStringList letters{u"\u05d0"_s, u"\u0634"_s, u"\u0905"_s, u"\u0e01"_s, u"\u10d0"_s, u"\u0531"_s, u"\u0f40"_s,
                              u"\u1200"_s, u"\u07ca"_s, u"\u0710"_s, u"\u0d05"_s, u"\u1780"_s, u"\u1000"_s};
    run.append(letters.join(u'\n'), OutputKind::out);
    // What stands on the screen: to ask the pane for a picture would have it painted once more.
    const auto isInked = [this](const QRect &area) {
        const QPoint place = pane.viewport()->mapTo(&pane, area.topLeft());
        const QImage image =
            pane.screen()->grabWindow(pane.winId(), place.x(), place.y(), area.width(), area.height()).toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) != image.pixelColor(0, 0))
                    return true;
            }
        }
        return false;
    };
    PaintingTime painting(*pane.viewport());
    const CellFont font(Typography::monospaced(12));
    EXPECT_TRUE(waitUntil([&] {
        QRect cells(8, 8, static_cast<int>(2 * font.cellWidth()), font.rowHeight());
        return std::all_of(letters.begin(), letters.end(), [&](const QString &) {
            const bool isShown = isInked(cells);
            cells.translate(0, font.rowHeight());
            return isShown;
        });
    }));
    if (painting.count == 1)
        GTEST_SKIP() << "all fonts were opened in time";
}
