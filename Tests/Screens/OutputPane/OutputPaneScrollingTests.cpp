// How far what moves the pane's place moves it.

#include "OutputPaneTest.h"

#include <QSignalSpy>
#include <QTimer>

#include <chrono>

using namespace Qt::StringLiterals;

namespace
{

class OutputPaneScrollingTest : public OutputPaneTest
{
protected:
    QScrollBar &bar() { return *pane.verticalScrollBar(); }
    int rowHeight() { return pane.characterRect(pane.positionAt({0, 0})).height(); }

    /// By how many steps of the bar that moves it.
    int moved(QAbstractSlider::SliderAction action)
    {
        const int before = bar().value();
        bar().triggerAction(action);
        return bar().value() - before;
    }

    /// The first so many places that the bar comes to.
    QList<int> places(int count)
    {
        QSignalSpy moves(&bar(), &QScrollBar::valueChanged);
        EXPECT_TRUE(waitUntil([&] { return moves.count() >= count; }));
        QList<int> found;
        for (int index = 0; index < count; ++index)
            found.append(moves[index].first().toInt());
        return found;
    }
};

} // namespace

TEST_F(OutputPaneScrollingTest, GoesByARowOrByAPageLessOneRow)
{
    fill();
    const int row = rowHeight();
    const int height = pane.viewport()->height();
    EXPECT_EQ(bar().singleStep(), row);
    EXPECT_EQ(bar().pageStep(), height);
    bar().setValue(1000);
    EXPECT_EQ(moved(QAbstractSlider::SliderSingleStepAdd), row);
    EXPECT_EQ(moved(QAbstractSlider::SliderSingleStepSub), -row);
    EXPECT_EQ(moved(QAbstractSlider::SliderPageStepAdd), height - row);
    EXPECT_EQ(moved(QAbstractSlider::SliderPageStepSub), row - height);
    bar().triggerAction(QAbstractSlider::SliderToMinimum);
    EXPECT_EQ(bar().value(), 0);
    EXPECT_EQ(moved(QAbstractSlider::SliderSingleStepSub), 0);
    bar().triggerAction(QAbstractSlider::SliderToMaximum);
    EXPECT_TRUE(isAtEnd());
    EXPECT_EQ(moved(QAbstractSlider::SliderPageStepAdd), 0);
    EXPECT_EQ(moved(QAbstractSlider::SliderSingleStepSub), -row);
}

TEST_F(OutputPaneScrollingTest, GoesByARowWhereNoMoreHasRoom)
{
    fill();
    const int row = rowHeight();
    pane.setMinimumHeight(0);
    pane.resize(pane.width(), row + 6);
    bar().setValue(1000);
    EXPECT_EQ(moved(QAbstractSlider::SliderPageStepAdd), row);
    EXPECT_EQ(moved(QAbstractSlider::SliderPageStepSub), -row);
}

TEST_F(OutputPaneScrollingTest, GoesByTrueRowsAlsoWhereItsBarCannotCountThePixels)
{
    const QByteArray piece(qsizetype{1024} * 1024, '\n');
    for (int count = 0; count < 150; ++count)
        run.append(QUtf8StringView(piece.constData(), piece.size()), OutputKind::out);
    EXPECT_TRUE(waitUntil([this] { return bar().maximum() > 0 && isAtEnd(); }));
    const int row = rowHeight();
    const int height = pane.viewport()->height();
    const qint64 pixels = (150 * piece.size() + 1) * row + qint64{2} * OutputPaneViewport::padding + 1 - height;
    const qint64 perStep = 1 + pixels / 1'000'000'000;
    ASSERT_GT(perStep, 1);
    EXPECT_EQ(bar().maximum(), pixels / perStep);
    EXPECT_EQ(bar().singleStep(), row / perStep);
    EXPECT_EQ(bar().pageStep(), height / perStep);
    bar().setValue(bar().maximum() / 2);
    const OutputPane::Position top = pane.positionAt({0, 0});
    EXPECT_NEAR(static_cast<double>(top), 75.0 * 1024 * 1024, 100);
    bar().triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(pane.positionAt({0, 0}), top + 1);
    bar().triggerAction(QAbstractSlider::SliderSingleStepSub);
    EXPECT_EQ(pane.positionAt({0, 0}), top);
    bar().triggerAction(QAbstractSlider::SliderToMaximum);
    EXPECT_FALSE(pane.characterRect(pane.text().end() - 1).isNull());
}

TEST_F(OutputPaneScrollingTest, GoesTheFasterTheFurtherAwayADragIsHeldAndStopsWithinThePane)
{
    fill();
    bar().setValue(1000);
    press({20, 50});
    const int height = pane.viewport()->height();
    drag({20, height});
    EXPECT_EQ(places(3), QList<int>({1001, 1002, 1003})) << "just below";
    const int below = bar().value();
    drag({20, height + 9});
    EXPECT_EQ(places(2), QList<int>({below + 10, below + 20}));
    const int above = bar().value();
    drag({20, -1});
    EXPECT_EQ(places(2), QList<int>({above - 1, above - 2})) << "just above";
    for (const int within : {0, height - 1}) {
        drag({20, within});
        const int still = bar().value();
        QTimer clock;
        QSignalSpy ticks(&clock, &QTimer::timeout);
        clock.start(std::chrono::milliseconds(30));
        EXPECT_TRUE(waitUntil([&ticks] { return ticks.count() >= 3; }));
        EXPECT_EQ(bar().value(), still) << "held at " << within;
    }
    release();
}

TEST_F(OutputPaneScrollingTest, PutsAMatchThatWasAwayInTheMiddleAndLeavesOneInViewWhereItIs)
{
    fill();
    const OutputPane::Position far = run.plainText().indexOf(u"line 250");
    pane.reveal({far, far + 8});
    EXPECT_EQ(pane.selectedText(), u"line 250"_s);
    EXPECT_NEAR(pane.characterRect(far).center().y(), pane.viewport()->height() / 2.0, 1);
    const int place = bar().value();
    const OutputPane::Position near = run.plainText().indexOf(u"line 253");
    pane.reveal({near, near + 8});
    EXPECT_EQ(pane.selectedText(), u"line 253"_s);
    EXPECT_EQ(bar().value(), place);
}

TEST_F(OutputPaneScrollingTest, KnowsWhatIsInView)
{
    EXPECT_EQ(pane.visibleRange().begin, pane.visibleRange().end) << "nothing";
    fill();
    EXPECT_EQ(pane.visibleRange().end, run.transcript().end());
    bar().setValue(1000);
    const OutputRange shown = pane.visibleRange();
    EXPECT_EQ(shown.begin, pane.navigation().rowAt(pane.positionAt({0, 0})).begin);
    EXPECT_EQ(shown.end, pane.navigation().rowAt(pane.positionAt({0, pane.viewport()->height() - 1})).end);
}
