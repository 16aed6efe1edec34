#include "OutputPaneTest.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace
{

/// A pane that goes with the end only while its reader is there.
class OutputPaneFollowingTest : public OutputPaneTest
{
protected:
    OutputPaneFollowingTest()
    {
        pane.hide();
        reader.resize(640, 300);
        reader.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&reader));
        QApplication::setActiveWindow(&reader);
        reader.setFocus();
        appendAndShow(500);
        EXPECT_TRUE(endShows());
    }

    void append(int lines)
    {
        for (int line = 0; line < lines; ++line)
            run.append(u"line %1\n"_s.arg(++m_lines), OutputKind::out);
    }

    /// Lines arrive, and the pane has shown that.
    void appendAndShow(int lines)
    {
        append(lines);
        const int before = reader.verticalScrollBar()->maximum();
        EXPECT_TRUE(waitUntil([&] { return reader.verticalScrollBar()->maximum() > before; }));
    }

    bool endShows()
    {
        const QRect last = reader.characterRect(run.transcript().end() - 1);
        return !last.isEmpty() && reader.viewport()->rect().contains(last);
    }

    OutputPane::Position firstVisible() { return reader.positionAt({OutputPaneViewport::padding, 0}); }

    QPoint before(OutputPane::Position position)
    {
        const QRect rect = reader.characterRect(position);
        EXPECT_FALSE(rect.isEmpty()) << "not in view: " << position;
        return {rect.left() + 1, rect.center().y()};
    }

    void turnWheel(int notches)
    {
        const QPointF centre = reader.viewport()->rect().center();
        QWheelEvent event(centre, reader.viewport()->mapToGlobal(centre), {}, {0, 120 * notches}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(reader.viewport(), &event);
    }

    OutputPane reader{run, run.transcript().text(), nullptr, OutputPane::Following::whileAtEnd};

private:
    int m_lines = 0;
};

} // namespace

TEST_F(OutputPaneFollowingTest, GoesWithTheEndWhileTheReaderIsThere)
{
    appendAndShow(100);
    EXPECT_TRUE(endShows());
    QTest::mouseClick(reader.viewport(), Qt::LeftButton, {}, {20, 20});
    appendAndShow(100);
    EXPECT_TRUE(endShows()) << "a click selects nothing";
    QTest::mousePress(reader.viewport(), Qt::LeftButton, {}, {20, 20});
    appendAndShow(100);
    EXPECT_FALSE(endShows()) << "nothing moves while the button is held";
    QTest::mouseRelease(reader.viewport(), Qt::LeftButton, {}, {20, 20});
    EXPECT_TRUE(waitUntil([this] { return endShows(); })) << "nor does a click while more arrives";
    appendAndShow(100);
    EXPECT_TRUE(endShows());
}

TEST_F(OutputPaneFollowingTest, KeepsThePlaceOfWhoHasScrolledUpHoweverMuchArrives)
{
    turnWheel(2);
    const OutputPane::Position place = firstVisible();
    const QRect where = reader.characterRect(place);
    for (int round = 0; round < 20; ++round) {
        appendAndShow(1000);
        ASSERT_EQ(firstVisible(), place);
        ASSERT_EQ(reader.characterRect(place), where) << "not by a pixel";
    }
    turnWheel(-1000000);
    EXPECT_TRUE(endShows());
    appendAndShow(100);
    EXPECT_TRUE(endShows()) << "who has come back to the end is there";
}

TEST_F(OutputPaneFollowingTest, KeepsThePlaceOfTheScrollBarAndOfTheKeys)
{
    reader.verticalScrollBar()->setValue(reader.verticalScrollBar()->maximum() / 2);
    OutputPane::Position place = firstVisible();
    appendAndShow(1000);
    EXPECT_EQ(firstVisible(), place);
    reader.verticalScrollBar()->setValue(reader.verticalScrollBar()->maximum());
    appendAndShow(100);
    EXPECT_TRUE(endShows());

    QTest::keyClick(&reader, Qt::Key_PageUp);
    QTest::keyClick(&reader, Qt::Key_PageUp);
    place = firstVisible();
    appendAndShow(1000);
    EXPECT_EQ(firstVisible(), place);
    QTest::keyClick(&reader, Qt::Key_End, Qt::ControlModifier);
    appendAndShow(100);
    EXPECT_TRUE(endShows());
}

TEST_F(OutputPaneFollowingTest, KeepsPlaceAndSelectionOfWhoHasSelectedAtTheEnd)
{
    const OutputPane::Position end = run.transcript().end();
    const auto selectByMouse = [&] {
        QTest::mousePress(reader.viewport(), Qt::LeftButton, {}, before(end - 20));
        const QPoint to = before(end - 5);
        QMouseEvent move(QEvent::MouseMove, to, reader.viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(reader.viewport(), &move);
        QTest::mouseRelease(reader.viewport(), Qt::LeftButton, {}, to);
    };
    selectByMouse();
    const QString selected = reader.selectedText();
    EXPECT_EQ(selected.size(), 15);
    const OutputPane::Position place = firstVisible();
    appendAndShow(1000);
    EXPECT_EQ(firstVisible(), place);
    EXPECT_EQ(reader.selectedText(), selected);
    EXPECT_FALSE(endShows());

    reader.jumpToEnd();
    EXPECT_EQ(reader.selectedText(), selected);
    appendAndShow(100);
    EXPECT_TRUE(endShows());
    reader.selectAll();
    const OutputPane::Position placeOfAll = firstVisible();
    const QString all = reader.selectedText();
    appendAndShow(100);
    EXPECT_EQ(firstVisible(), placeOfAll);
    EXPECT_EQ(reader.selectedText(), all);
}

TEST_F(OutputPaneFollowingTest, KeepsThePlaceOfWhatWasSelectedAndThenShownNearTheEnd)
{
    reader.verticalScrollBar()->setValue(0);
    const OutputPane::Position end = run.transcript().end();
    reader.select(end - 8, end - 1);
    reader.scrollTo(end - 1);
    const OutputPane::Position place = firstVisible();
    appendAndShow(100);
    EXPECT_EQ(firstVisible(), place);
}

TEST_F(OutputPaneFollowingTest, TellsWhenTheEndComesIntoViewAndLeavesIt)
{
    QSignalSpy told(&reader, &OutputPane::showsEndChanged);
    turnWheel(2);
    ASSERT_EQ(told.count(), 1);
    EXPECT_FALSE(told.takeFirst().first().toBool());
    appendAndShow(100);
    EXPECT_EQ(told.count(), 0) << "nothing has changed";
    reader.jumpToEnd();
    ASSERT_EQ(told.count(), 1);
    EXPECT_TRUE(told.takeFirst().first().toBool());
    EXPECT_EQ(reader.selection().caret().position, run.transcript().end());

    reader.select(run.transcript().end() - 9, run.transcript().end() - 1);
    EXPECT_EQ(told.count(), 0) << "the end is still in view";
    appendAndShow(100);
    ASSERT_EQ(told.count(), 1) << "and now it is not";
    EXPECT_FALSE(told.first().first().toBool());
}

TEST_F(OutputPaneFollowingTest, FollowsAnewWhenNothingIsLeftOfWhatWasRead)
{
    reader.verticalScrollBar()->setValue(0);
    run.clearTranscript();
    append(500);
    EXPECT_TRUE(waitUntil([this] { return endShows(); }));
    appendAndShow(100);
    EXPECT_TRUE(endShows());
}
