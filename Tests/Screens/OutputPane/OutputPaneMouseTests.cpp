#include "OutputPaneTest.h"
#include "Screens/EventCount.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QStyleOptionSlider>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace
{

/// Turns the wheel over the pane; true when the pane used the turn.
bool turnWheel(OutputPane &pane, int angle, int pixels = 0)
{
    const QPoint place = pane.viewport()->rect().center();
    QWheelEvent event(place, pane.viewport()->mapToGlobal(place), QPoint(0, pixels), QPoint(0, angle), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(pane.viewport(), &event);
    return event.isAccepted();
}

/// Opens the context menu and returns its action of that name.
QAction *menuAction(OutputPane &pane, const QString &name)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(20, 20), pane.viewport()->mapToGlobal(QPoint(20, 20)));
    QCoreApplication::sendEvent(pane.viewport(), &event);
    for (const QMenu *menu : pane.findChildren<QMenu *>()) {
        for (QAction *action : menu->actions()) {
            if (menu->isVisible() && action->text() == name)
                return action;
        }
    }
    return nullptr;
}

void closeMenus(OutputPane &pane)
{
    for (QMenu *menu : pane.findChildren<QMenu *>())
        menu->close();
}

} // namespace

TEST_F(OutputPaneTest, SelectsByDraggingAcrossRowsAndSegmentsInBothDirections)
{
    run.append(u"one two\n"_s, OutputKind::out);
    run.append(u"three\n"_s, OutputKind::err);
    EXPECT_TRUE(showsEnd());
    press(before(4));
    drag(before(10));
    EXPECT_EQ(pane.selectedText(), u"two\nth"_s);
    drag(before(0));
    EXPECT_EQ(pane.selectedText(), u"one "_s);
    release(before(0));
    EXPECT_EQ(pane.selectedText(), u"one "_s);
    drag(before(10));
    EXPECT_EQ(pane.selectedText(), u"one "_s) << "the button is up";
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, before(2));
    EXPECT_EQ(pane.selectedText(), QString());
}

TEST_F(OutputPaneTest, ScrollsWhileADragIsHeldBelowOrAboveIt)
{
    fill();
    pane.verticalScrollBar()->setValue(0);
    press(before(0));
    drag(QPoint(20, pane.viewport()->height() + 1000));
    EXPECT_TRUE(waitUntil([this] { return isAtEnd(); }));
    EXPECT_TRUE(pane.selectedText().startsWith(u"line 0\n"_s));
    EXPECT_TRUE(waitUntil([this] { return pane.selectedText().contains(u"line 499"_s); }));
    drag(QPoint(20, -1000));
    EXPECT_TRUE(waitUntil([this] { return pane.verticalScrollBar()->value() == 0; }));
    release();
}

TEST_F(OutputPaneTest, HoldsStillWhileTheMouseIsHeldAndShowsTheEndAfterwards)
{
    fill();
    pane.verticalScrollBar()->setValue(0);
    press(before(0));
    const int length = pane.verticalScrollBar()->maximum();
    run.append(u"more\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil([&] { return pane.verticalScrollBar()->maximum() > length; }));
    EXPECT_EQ(pane.verticalScrollBar()->value(), 0);
    release();
    EXPECT_TRUE(showsEnd());
}

TEST_F(OutputPaneTest, ShowsTheEndAlsoWhenTheReleaseOfTheMouseWentElsewhere)
{
    fill();
    pane.verticalScrollBar()->setValue(0);
    press(before(0));
    QWidget question;
    QTest::mouseRelease(&question, Qt::LeftButton);
    run.append(u"more\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
}

TEST_F(OutputPaneTest, ExtendsTheSelectionToAClickWithShift)
{
    run.append(u"abcdefgh\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, before(2));
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, Qt::ShiftModifier, before(5));
    EXPECT_EQ(pane.selectedText(), u"cde"_s);
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, Qt::ShiftModifier, before(0));
    EXPECT_EQ(pane.selectedText(), u"ab"_s);
}

TEST_F(OutputPaneTest, SelectsAWordByTwoClicksAndALineByThree)
{
    run.append(u"alpha beta gamma\nsecond line\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    QApplication::setDoubleClickInterval(5000);
    const QPoint inBeta = pane.characterRect(7).center();
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, inBeta);
    QTest::mouseDClick(pane.viewport(), Qt::LeftButton, {}, inBeta);
    EXPECT_EQ(pane.selectedText(), u"beta"_s);
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, inBeta);
    EXPECT_EQ(pane.selectedText(), u"alpha beta gamma\n"_s);
}

TEST_F(OutputPaneTest, DragsByWordsAfterTwoClicksAndByLinesAfterThree)
{
    QApplication::setDoubleClickInterval(5000);
    run.append(u"alpha beta gamma\nsecond line\nthird\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    const QPoint inBeta = pane.characterRect(7).center();
    press(inBeta);
    send(QEvent::MouseButtonDblClick, inBeta, Qt::LeftButton);
    drag(pane.characterRect(25).center());
    EXPECT_EQ(pane.selectedText(), u"beta gamma\nsecond line"_s);
    drag(pane.characterRect(2).center());
    EXPECT_EQ(pane.selectedText(), u"alpha beta"_s);
    release(inBeta);
    press(inBeta);
    EXPECT_EQ(pane.selectedText(), u"alpha beta gamma\n"_s);
    drag(pane.characterRect(25).center());
    EXPECT_EQ(pane.selectedText(), u"alpha beta gamma\nsecond line\n"_s);
    release(inBeta);
}

TEST_F(OutputPaneTest, OffersCopyAndSelectAllInItsContextMenu)
{
    ASSERT_NE(menuAction(pane, u"Copy"_s), nullptr);
    EXPECT_FALSE(menuAction(pane, u"Copy"_s)->isEnabled());
    EXPECT_FALSE(menuAction(pane, u"Select All"_s)->isEnabled()) << "there is nothing yet";
    closeMenus(pane);
    run.append(u"some text\n"_s, OutputKind::out);
    menuAction(pane, u"Select All"_s)->trigger();
    closeMenus(pane);
    EXPECT_EQ(pane.selectedText(), u"some text\n"_s);
    EXPECT_EQ(menuAction(pane, u"Copy"_s)->shortcut(), QKeySequence(QKeySequence::Copy));
    EXPECT_EQ(menuAction(pane, u"Select All"_s)->shortcut(), QKeySequence(QKeySequence::SelectAll));
    closeMenus(pane);
    menuAction(pane, u"Copy"_s)->trigger();
    closeMenus(pane);
    EXPECT_EQ(QApplication::clipboard()->text(), u"some text\n"_s);
}

TEST_F(OutputPaneTest, ScrollsByTheWheelHoweverFinelyItTurns)
{
    EXPECT_FALSE(turnWheel(pane, 120)) << "with nothing to scroll the turn is the screen's";
    fill();
    const QScrollBar &bar = *pane.verticalScrollBar();
    int place = bar.value();
    EXPECT_TRUE(turnWheel(pane, 120));
    const int notch = place - bar.value();
    EXPECT_EQ(notch, QApplication::wheelScrollLines() * pane.characterRect(run.transcript().end() - 40).height());
    turnWheel(pane, -120);
    EXPECT_EQ(bar.value(), place);
    turnWheel(pane, 120);
    EXPECT_FALSE(turnWheel(pane, 0)) << "not up or down";
    place = bar.value();
    for (int turn = 0; turn < 120; ++turn)
        turnWheel(pane, 1);
    EXPECT_EQ(place - bar.value(), notch);
    place = bar.value();
    turnWheel(pane, 120, 7);
    EXPECT_EQ(place - bar.value(), 7) << "a touch pad says how many pixels";
}

TEST_F(OutputPaneTest, HoldsStillUnderTheMouseAlsoWhereTheEndIsInView)
{
    fill();
    const TextStore::Position word = run.transcript().end() - 30;
    const QRect place = pane.characterRect(word);
    press(place.center());
    const int length = pane.verticalScrollBar()->maximum();
    for (int line = 0; line < 5; ++line)
        run.append(u"more\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil([&] { return pane.verticalScrollBar()->maximum() > length; }));
    EXPECT_EQ(pane.characterRect(word), place);
    drag(place.center());
    EXPECT_EQ(pane.selectedText(), QString());
    send(QEvent::MouseButtonRelease, place.center(), Qt::RightButton);
    run.append(u"more\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil([&] { return pane.verticalScrollBar()->maximum() > length; }));
    EXPECT_EQ(pane.characterRect(word), place) << "the left button is held still";
    release(place.center());
    EXPECT_TRUE(showsEnd());
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, place.center());
    pane.resize(pane.width(), 200);
    EXPECT_TRUE(showsEnd()) << "a click leaves the end in view";
}

TEST_F(OutputPaneTest, FollowsTheEndAlsoWhenTheReleaseOfItsSliderWentElsewhere)
{
    fill();
    QScrollBar &bar = *pane.verticalScrollBar();
    bar.setValue(0);
    QStyleOptionSlider option;
    option.initFrom(&bar);
    option.orientation = Qt::Vertical;
    option.minimum = bar.minimum();
    option.maximum = bar.maximum();
    option.pageStep = bar.pageStep();
    const QRect slider = bar.style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, &bar);
    QTest::mousePress(&bar, Qt::LeftButton, {}, slider.center());
    ASSERT_TRUE(bar.isSliderDown());
    const EventCount paints(*pane.viewport(), QEvent::Paint);
    run.append(u"held\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil([&] { return paints.count() > 0; }));
    EXPECT_TRUE(bar.isSliderDown());
    EXPECT_EQ(bar.value(), 0);
    QWidget question;
    QTest::mouseRelease(&question, Qt::LeftButton);
    run.append(u"more\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
}

TEST_F(OutputPaneTest, FindsEveryCharacterWhereItIsDrawn)
{
    for (const QString &line : {u"\u05e9\u05dc\u05d5\u05dd\n"_s, u"ls \u0645\u0631\u062d\u0628\u0627 end\n"_s,
                                u"\u0645\u0631\u062d\u0628\u0627 \u05e9\u05dc a\u4e2d\u0301b\n"_s,
                                u"a\tb\x1bz e\u0301\n"_s, u"\u0928\u092e \u0928\u0947 x\n"_s}) {
        run.clearTranscript();
        const TextStore::Position begin = run.transcript().end();
        run.append(line, OutputKind::out);
        EXPECT_TRUE(showsEnd());
        const TextStore::Position end = run.transcript().end() - 1;
        for (TextStore::Position at = begin; at < end; at = pane.navigation().nextCharacter(at))
            EXPECT_EQ(pane.positionAt(pane.characterRect(at).center()), at) << line.toStdString() << at - begin;
        // No place between two characters is taken for one beside the text.
        const QRect first = pane.characterRect(begin);
        for (int x = 0; x < pane.characterRect(end).left(); ++x)
            EXPECT_LT(pane.positionAt(QPoint(x, first.center().y())), end) << line.toStdString() << " at " << x;
    }
}

TEST_F(OutputPaneTest, TakesAThirdClickForALineOnlyWhereAndSoonAfterTheTwoWere)
{
    run.append(u"alpha beta gamma\nsecond line\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    const QPoint inBeta = pane.characterRect(7).center();
    const auto selectedByThird = [&](QPoint place, int interval) {
        QApplication::setDoubleClickInterval(5000);
        QTest::mouseDClick(pane.viewport(), Qt::LeftButton, {}, inBeta);
        EXPECT_EQ(pane.selectedText(), u"beta"_s);
        QApplication::setDoubleClickInterval(interval);
        QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, place);
        return pane.selectedText();
    };
    const int far = QApplication::startDragDistance();
    EXPECT_EQ(selectedByThird(inBeta + QPoint(far - 1, 0), 5000), u"alpha beta gamma\n"_s);
    EXPECT_EQ(selectedByThird(inBeta + QPoint(far, 0), 5000), QString());
    EXPECT_EQ(selectedByThird(inBeta, 0), QString());
}

TEST_F(OutputPaneTest, SelectsByTheLeftButtonAlone)
{
    run.append(u"abcdefgh\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    pane.select(1, 3);
    QTest::mouseClick(pane.viewport(), Qt::RightButton, {}, before(5));
    QTest::mouseDClick(pane.viewport(), Qt::RightButton, {}, before(5));
    EXPECT_EQ(pane.selectedText(), u"bc"_s);
    press(before(2));
    send(QEvent::MouseButtonRelease, before(2), Qt::RightButton);
    drag(before(6));
    EXPECT_EQ(pane.selectedText(), u"cdef"_s) << "the left one is held still";
    release();
}
