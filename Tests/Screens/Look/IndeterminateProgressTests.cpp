#include "Look/IndeterminateProgress.h"
#include "Screens/ByName.h"
#include "Support/Waiting.h"

using namespace Qt::StringLiterals;

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
