#include "Screens/Look/RowListTest.h"

TEST_F(RowListTest, DoesNotScrollToAFocusedRowThatChangesOutOfView)
{
    list->setRows(rowsNumbered(0, 300));
    button(3, 0)->setFocus();
    list->verticalScrollBar()->setValue(5000);
    QList<RowContent> rows = rowsNumbered(0, 300);
    rows[3] = contentOf(u"row3"_s, true); // its focused button is disabled
    list->setRows(rows);
    EXPECT_EQ(list->verticalScrollBar()->value(), 5000);
    EXPECT_EQ(QApplication::focusWidget(), list->row(3));
    list->setRows(rowsNumbered(0, 300)); // and enabled again
    EXPECT_EQ(list->verticalScrollBar()->value(), 5000);
    EXPECT_EQ(focusedText(), u"Start row3"_s);
    rows = rowsNumbered(0, 300);
    rows.removeAt(3);
    const int index = list->indexAt(5000) + 1;
    const int place = centreOnScreen(index);
    list->setRows(rows);
    EXPECT_EQ(centreOnScreen(index - 1), place);
    EXPECT_EQ(focusedText(), u"Start row4"_s);

    button(200, 0)->setFocus();
    list->verticalScrollBar()->setValue(0);
    rows[200].buttons[0].isEnabled = false;
    list->setRows(rows);
    EXPECT_EQ(list->verticalScrollBar()->value(), 0);
    rows[200].buttons[0].isEnabled = true;
    list->setRows(rows);
    EXPECT_EQ(list->verticalScrollBar()->value(), 0);
    rows.removeAt(200);
    list->setRows(rows);
    EXPECT_EQ(list->verticalScrollBar()->value(), 0);
}

TEST_F(RowListTest, KeepsAHalfPressedButtonUnderThePointerAlsoAtTheTop)
{
    list->setRows(rowsNumbered(1, 50));
    QSignalSpy pressed(list, &RowList::pressed);
    QPushButton *held = button(2, 2);
    QTest::mousePress(held, Qt::LeftButton);
    const QPoint pointer = held->mapToGlobal(held->rect().center());
    list->setRows(rowsNumbered(0, 50));
    QTest::mouseRelease(held, Qt::LeftButton, {}, held->mapFromGlobal(pointer));
    EXPECT_EQ(pressed.count(), 1);
    EXPECT_EQ(held->accessibleDescription(), u"Delete row3"_s);
}

TEST_F(RowListTest, KeepsAHalfPressedButtonThroughARefresh)
{
    list->setRows(rowsNumbered(0, 5));
    QSignalSpy pressed(list, &RowList::pressed);
    QPushButton *held = button(2, 2);
    QTest::mousePress(held, Qt::LeftButton);
    list->setRows(rowsNumbered(0, 5));
    QList<RowContent> rows = rowsNumbered(0, 8);
    rows[2].lines[1].text = u"another caption"_s;
    list->setRows(rows);
    EXPECT_TRUE(held->isDown());
    QTest::mouseRelease(held, Qt::LeftButton);
    ASSERT_EQ(pressed.count(), 1);
    EXPECT_EQ(pressed[0][0].toInt(), 2);
}

TEST_F(RowListTest, TellsNothingOfAButtonWhoseRowWentAwayWhileItWasHeld)
{
    list->setRows(rowsNumbered(0, 5));
    QSignalSpy pressed(list, &RowList::pressed);
    const QPointer<QPushButton> held = button(2, 2);
    QTest::mousePress(held, Qt::LeftButton);
    list->setRows(rowsNumbered(3, 5));
    if (held != nullptr)
        QTest::mouseRelease(held, Qt::LeftButton);
    settle();
    EXPECT_EQ(pressed.count(), 0);
    EXPECT_EQ(held, nullptr);
}

TEST_F(RowListTest, MayLoseARowInAnswerToItsOwnButton)
{
    list->setRows(rowsNumbered(0, 3));
    QObject::connect(list, &RowList::pressed, list, [this] { list->setRows(rowsNumbered(2, 3)); });
    QTest::mouseClick(button(0, 2), Qt::LeftButton);
    settle();
    EXPECT_EQ(list->count(), 1);
    EXPECT_EQ(list->findChildren<RowWidget *>().size(), 1);
}

TEST_F(RowListTest, KeepsTheRowsInViewInPlaceWhileRowsAboveThemComeAndGo)
{
    list->setRows(rowsNumbered(100, 200));
    list->verticalScrollBar()->setValue(1234);
    settle();
    const int index = list->indexAt(1234) + 2;
    const int place = centreOnScreen(index);
    list->setRows(rowsNumbered(90, 200));
    EXPECT_EQ(centreOnScreen(index + 10), place);
    list->setRows(rowsNumbered(105, 200));
    EXPECT_EQ(centreOnScreen(index - 5), place);
    list->setRows(rowsNumbered(105, 300));
    EXPECT_EQ(centreOnScreen(index - 5), place);
}

TEST_F(RowListTest, ShowsANewFirstRowWhenItStandsAtItsTop)
{
    list->setRows(rowsNumbered(1, 100));
    list->setRows(rowsNumbered(0, 100));
    EXPECT_EQ(list->verticalScrollBar()->value(), 0);
}

TEST_F(RowListTest, KeepsTheWidgetsThatHaveTheFocusOrAreHeldWhenScrolledAway)
{
    list->setRows(rowsNumbered(0, 2000));
    list->verticalScrollBar()->setValue(20000);
    settle();
    const int index = list->indexAt(20100);
    const QPointer<QPushButton> held = button(index, 2);
    held->setFocusPolicy(Qt::NoFocus); // as buttons are on macOS
    QTest::mousePress(held, Qt::LeftButton);
    list->verticalScrollBar()->setValue(0);
    settle();
    ASSERT_NE(held, nullptr);
    EXPECT_TRUE(held->isDown());
    QTest::mouseRelease(held, Qt::LeftButton, {}, QPoint(-500, -500));
    const QPointer<QPushButton> focused = button(1000, 2);
    focused->setFocus(Qt::MouseFocusReason);
    list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum());
    settle();
    ASSERT_NE(focused, nullptr);
    EXPECT_TRUE(focused->hasFocus());
}

TEST_F(RowListTest, DoesNotScrollUnderThePointer)
{
    list->setRows(rowsNumbered(0, 100));
    list->verticalScrollBar()->setValue(list->row(3)->y() + 20);
    QPushButton *halfInView = button(3, 2);
    const int place = list->verticalScrollBar()->value();
    QTest::mousePress(halfInView, Qt::LeftButton);
    EXPECT_EQ(list->verticalScrollBar()->value(), place);
    QTest::mouseRelease(halfInView, Qt::LeftButton);
}

TEST_F(RowListTest, TakesAClickOnWhatHasComeUnderThePointerOnlyFromElsewhereOrLater)
{
    QApplication::setDoubleClickInterval(5000);
    list->setRows(rowsNumbered(0, 10));
    QSignalSpy pressed(list, &RowList::pressed);
    const auto clickAt = [this](QPoint screen) {
        QWidget *under = list->widget()->childAt(list->widget()->mapFromGlobal(screen));
        ASSERT_NE(under, nullptr);
        QTest::mouseClick(under, Qt::LeftButton, {}, under->mapFromGlobal(screen));
    };
    const QPoint place = button(0, 2)->mapToGlobal(button(0, 2)->rect().center());
    clickAt(place);
    list->setRows(rowsNumbered(0, 12));
    clickAt(place);
    EXPECT_EQ(pressed.count(), 2) << "nothing has moved there";
    list->setRows(rowsNumbered(1, 12));
    clickAt(place);
    EXPECT_EQ(pressed.count(), 2);
    const int far = QApplication::startDragDistance();
    clickAt(place + QPoint(1 - far, 0));
    EXPECT_EQ(pressed.count(), 2);
    clickAt(place + QPoint(1, 0));
    EXPECT_EQ(pressed.count(), 3) << "the pointer has moved";

    list->setRows(rowsNumbered(2, 12));
    QElapsedTimer since;
    since.start();
    QApplication::setDoubleClickInterval(1);
    EXPECT_TRUE(waitUntil([&since] { return since.elapsed() > 1; }));
    clickAt(place + QPoint(1, 0));
    EXPECT_EQ(pressed.count(), 4) << "a moment has passed";
}
