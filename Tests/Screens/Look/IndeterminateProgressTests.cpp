#include "Look/IndeterminateProgress.h"
#include "Screens/ByName.h"
#include "Support/Waiting.h"

using namespace Qt::StringLiterals;

namespace
{

/// Counts the steps of a widget's motion.
class Steps : public QObject
{
public:
    explicit Steps(QObject &widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Timer ? 1 : 0;
        return false;
    }
    int count = 0;
};

} // namespace

TEST(IndeterminateBar, SaysThatSomethingGoesOn)
{
    const IndeterminateBar bar;
    EXPECT_EQ(ByName::nameOf(&bar), u"In progress"_s);
    EXPECT_EQ(bar.maximum(), 0);
    EXPECT_FALSE(bar.isTextVisible());
}

TEST(IndeterminateBar, NeverLooksFullAndMoves)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "it is the system's own";
#endif
    IndeterminateBar bar;
    bar.resize(400, bar.height());
    bar.show();
    const auto pixel = [&bar](double share) {
        const QImage picture = bar.grab().toImage();
        return picture.pixelColor(static_cast<int>(share * (picture.width() - 1)), picture.height() / 2);
    };
    EXPECT_TRUE(waitUntil([&] { return pixel(0.5) == bar.palette().color(QPalette::Highlight); }));
    EXPECT_NE(pixel(0.02), bar.palette().color(QPalette::Highlight));
    EXPECT_NE(pixel(0.98), bar.palette().color(QPalette::Highlight));
    EXPECT_NE(pixel(0.98), bar.palette().color(QPalette::Window)) << "how far it goes is seen";
    EXPECT_TRUE(waitUntil([&] { return pixel(0.5) != bar.palette().color(QPalette::Highlight); }));
}

TEST(Spinner, SaysThatSomethingGoesOnAndTurnsWhileItIsSeen)
{
    Spinner spinner;
    EXPECT_EQ(ByName::nameOf(&spinner), u"In progress"_s);
    EXPECT_EQ(spinner.maximum(), 0);
    spinner.show();
    const QImage first = spinner.grab().toImage();
    EXPECT_TRUE(waitUntil([&] { return spinner.grab().toImage() != first; }));
}

TEST(IndeterminateProgress, RestsWhileItIsHidden)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the bar is the system's own";
#endif
    Spinner clock;
    clock.show();
    IndeterminateBar bar;
    bar.resize(200, bar.height());
    Steps ofClock(clock);
    Steps ofBar(bar);
    bar.show();
    EXPECT_TRUE(waitUntil([&] { return ofBar.count >= 3; }));
    bar.hide();
    ofBar.count = 0;
    ofClock.count = 0;
    EXPECT_TRUE(waitUntil([&] { return ofClock.count >= 3; }));
    EXPECT_EQ(ofBar.count, 0);
    bar.show();
    EXPECT_TRUE(waitUntil([&] { return ofBar.count >= 3; }));
}

TEST(IndeterminateProgress, IsThinAsABarAndSmallAsAWheel)
{
#ifndef Q_OS_MACOS
    EXPECT_EQ(IndeterminateBar().maximumHeight(), 6);
#endif
    EXPECT_EQ(Spinner().size(), QSize(16, 16));
}

TEST(IndeterminateBar, CrossesItsWidthInFortyFiveStepsAndBeginsAnew)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "it is the system's own";
#endif
    constexpr int width = 400;
    constexpr int length = width / 4;
    IndeterminateBar bar;
    bar.resize(width, bar.height());
    Steps steps(bar);
    bar.show();
    for (const int wanted : {0, 5, 20, 40, 46}) {
        EXPECT_TRUE(waitUntil([&] { return steps.count >= wanted; }));
        const QImage picture = bar.grab().toImage();
        const double left = (width + length) * (steps.count % 45) / 45.0 - length;
        for (int x = 5; x < width - 5; ++x) {
            const bool isFilled =
                picture.pixelColor(x, picture.height() / 2) == bar.palette().color(QPalette::Highlight);
            if (std::abs(x - left) > 2 && std::abs(x - left - length) > 2) {
                EXPECT_EQ(isFilled, x > left && x < left + length) << "at " << x << " after " << steps.count;
            }
        }
    }
}

TEST(Spinner, HasEightSpokesThatFadeAgainstItsTurn)
{
    Spinner spinner;
    Steps steps(spinner);
    spinner.show();
    const QImage first = spinner.grab().toImage();
    // From the darkest, at the top, against the clock.
    double last = -1;
    for (const QPoint place : {QPoint(0, -5), QPoint(-4, -4), QPoint(-5, 0), QPoint(-4, 4), QPoint(0, 5), QPoint(4, 4),
                               QPoint(5, 0), QPoint(4, -4)}) {
        double lightness = 0;
        for (const QPoint near : {QPoint(-1, -1), QPoint(0, -1), QPoint(-1, 0), QPoint(0, 0)})
            lightness += first.pixelColor(QPoint(8, 8) + place + near).lightnessF();
        EXPECT_GT(lightness, last) << place.x() << ',' << place.y();
        last = lightness;
    }
    for (int step = 1; step <= 8; ++step) {
        EXPECT_TRUE(waitUntil([&] { return steps.count >= step; }));
        EXPECT_EQ(spinner.grab().toImage() == first, steps.count % 8 == 0) << "after " << steps.count;
    }
}
