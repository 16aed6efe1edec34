#include "Screens/ContentView/Screens/ContainersViewTest.h"

TEST_F(ContainersViewTest, PaintsNothingForARefreshThatChangesNothing)
{
    QApplication::setCursorFlashTime(0);
    QByteArray lines;
    for (int number = 0; number < 1000; ++number)
        lines += lineOf(u"c%1"_s.arg(number), number % 2 == 0 ? u"running"_s : u"exited"_s);
    setContainers(lines);
    show();
    list().verticalScrollBar()->setValue(4000);
    waitUntilPainted(window.content());
    PaintWatch watch(window.content());
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    QTest::qWait(50);
    EXPECT_EQ(watch.count(), 0);
    EXPECT_EQ(list().verticalScrollBar()->value(), 4000);
}

TEST_F(ContainersViewTest, RepaintsOnlyTheRowOfTheContainerThatChanged)
{
    QApplication::setCursorFlashTime(0);
    show();
    waitUntilPainted(window.content());
    setContainers(lineOf(u"web"_s, u"exited"_s, u"0.0.0.0:8080->80/tcp"_s) + lineOf(u"db"_s, u"exited"_s));
    PaintWatch watch(window.content());
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    QTest::qWait(50);
    EXPECT_GT(watch.count(), 0);
    EXPECT_TRUE(watch.isWithin(*list().row(0)));
}

TEST_F(ContainersViewTest, KeepsFocusScrollPositionAndAHalfPressedButtonThroughARefresh)
{
    QByteArray lines;
    for (int number = 0; number < 200; ++number)
        lines += lineOf(u"c%1"_s.arg(number), u"running"_s);
    setContainers(lines);
    show();
    list().verticalScrollBar()->setValue(list().row(100)->y());
    QPushButton *held = list().row(101)->buttons()[1];
    QTest::mousePress(held, Qt::LeftButton);
    held->setFocus();
    const int place = held->mapTo(&window.content(), QPoint()).y();
    setContainers(lineOf(u"new"_s, u"created"_s) + lines);
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    EXPECT_EQ(list().count(), 201);
    EXPECT_EQ(held->mapTo(&window.content(), QPoint()).y(), place);
    EXPECT_TRUE(held->isDown());
    EXPECT_TRUE(held->hasFocus());
    QTest::mouseRelease(held, Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><c101>"_s), 1);
}

TEST_F(ContainersViewTest, StaysUsableWithFiveThousandContainers)
{
    QByteArray lines;
    for (int number = 0; number < 5000; ++number)
        lines += lineOf(u"c%1"_s.arg(number), u"running"_s, number % 3 == 0 ? u"80/tcp"_s : QString());
    setContainers(lines);
    show();
    EXPECT_EQ(list().count(), 5000);
    list().row(4999)->buttons()[3]->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(list().verticalScrollBar()->value(), list().verticalScrollBar()->maximum());
    press(view(), u"Remove"_s, u"Remove c4999"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<rm><-f><c4999>"_s), 1);
}
