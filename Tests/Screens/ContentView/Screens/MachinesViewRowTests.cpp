#include "Screens/ContentView/Screens/MachinesViewTest.h"

#include <QLayout>

TEST_F(MachinesViewTest, ShowsTwoMachinesOfTheSameName)
{
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(R"([{"name":"box","state":"running"},{"name":"box","state":"stopped"}])");
    window.show().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 2; }));
    EXPECT_EQ(rowTexts(0)[1], u" · running"_s);
    EXPECT_EQ(rowTexts(1)[1], u" · stopped"_s);
    QTest::mouseClick(list().row(1)->buttons()[0], Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<start><box>"_s), 1);
}

TEST_F(MachinesViewTest, SetsItsTextsInTheTypeOfTheirRank)
{
    show();
    const QList<PlainLabel *> lines = list().row(0)->findChildren<PlainLabel *>();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0]->font(), Typography::headline());
    EXPECT_EQ(lines[1]->font(), Typography::caption());
    EXPECT_EQ(lines[1]->palette().color(QPalette::WindowText), Colours::secondary(view().palette()));
    const auto *introduction =
        find<PlainLabel>(view(), u"Machines are real Linux systems on this Mac. They stay until you delete them."_s);
    EXPECT_EQ(introduction->font(), Typography::callout());
    EXPECT_EQ(introduction->palette().color(QPalette::WindowText), Colours::secondary(view().palette()));
    nameField().setText(u"NO"_s);
    press(view(), u"Create"_s);
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    EXPECT_EQ(log->font(), Typography::monospaced(11));
    EXPECT_EQ(log->width(), view().layout()->contentsRect().width());
}

TEST_F(MachinesViewTest, ShowsHostileNamesAsTheyAre)
{
    const QString html = u"<img src='x'><b>box</b>"_s;
    const QString reversed = u"box\u202etxt.exe"_s;
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(u"[{\"name\":\"%1\"},{\"name\":\"%2\"},{\"name\":\"%3\",\"state\":\"%3\"}]"_s
                                       .arg(html, reversed, QString(1000000, u'w'))
                                       .toUtf8());
    window.show().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 3; }));
    const QSize size = window.content().size();
    EXPECT_EQ(rowTexts(0)[0], html);
    EXPECT_EQ(rowTexts(1)[0], u"box⟨U+202E⟩txt.exe"_s);
    EXPECT_LT(rowTexts(2)[1].size(), 2000);
    press(view(), u"Delete"_s, u"Delete "_s + html);
    EXPECT_EQ(alert()->text(), u"Delete "_s + html + u'?');
    EXPECT_EQ(alert()->textFormat(), Qt::PlainText);
    press(*alert(), u"Cancel"_s);
    ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
    QTest::mouseClick(list().row(1)->buttons()[2], Qt::LeftButton);
    EXPECT_EQ(alert()->text(), u"Delete box⟨U+202E⟩txt.exe?"_s);
    press(*alert(), u"Cancel"_s);
    ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
    QTest::mouseClick(list().row(2)->buttons()[2], Qt::LeftButton);
    EXPECT_LT(alert()->text().size(), 300);
    EXPECT_LE(alert()->width(), 1000);
    EXPECT_EQ(window.content().size(), size);
}

TEST_F(MachinesViewTest, WritesOutTheFillersAndJoinersOfANameThatWouldLookLikeAnotherMachines)
{
    const QStringList names{u"box"_s, u"box\u3164"_s, u"box\u115f"_s, u"box\u034f"_s};
    const QStringList written{u"box"_s, u"box⟨U+3164⟩"_s, u"box⟨U+115F⟩"_s, u"box⟨U+034F⟩"_s};
    show(names);
    for (int index = 0; index < 4; ++index) {
        EXPECT_EQ(rowTexts(index)[0], written[index]);
        QTest::mouseClick(list().row(index)->buttons()[2], Qt::LeftButton);
        ASSERT_NE(alert(), nullptr);
        EXPECT_EQ(alert()->text(), u"Delete "_s + written[index] + u'?');
        press(*alert(), u"Delete"_s);
        ASSERT_TRUE(untilIdle());
        EXPECT_EQ(calls(u"<delete><-f><"_s + names[index] + u'>'), 1) << "it is deleted by its own name";
        ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
    }
}

TEST_F(MachinesViewTest, PaintsNothingForARefreshThatChangesNothing)
{
    QApplication::setCursorFlashTime(0);
    QStringList names;
    for (int number = 0; number < 1000; ++number)
        names << u"box%1"_s.arg(number);
    show(names);
    list().verticalScrollBar()->setValue(3000);
    waitUntilPainted(window.content());
    PaintWatch watch(window.content());
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    QTest::qWait(50);
    EXPECT_EQ(watch.count(), 0);
    EXPECT_EQ(list().verticalScrollBar()->value(), 3000);
}

TEST_F(MachinesViewTest, RepaintsOnlyTheRowOfTheMachineThatChanged)
{
    QApplication::setCursorFlashTime(0);
    show();
    waitUntilPainted(window.content());
    window.orbStack.setMachineList(
        R"([{"name":"box","state":"running","image":{"distro":"ubuntu","version":"noble"}},
            {"name":"web","state":"stopped","image":{"distro":"ubuntu","version":"noble"}}])");
    PaintWatch watch(window.content());
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    QTest::qWait(50);
    EXPECT_GT(watch.count(), 0);
    EXPECT_TRUE(watch.isWithin(*list().row(1)));
}

TEST_F(MachinesViewTest, StaysUsableWithFiveThousandMachines)
{
    QStringList names;
    for (int number = 0; number < 5000; ++number)
        names << u"box%1"_s.arg(number);
    show(names);
    EXPECT_EQ(list().count(), 5000);
    EXPECT_LT(list().widgetCount(), 100);
    list().row(4999)->buttons()[1]->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(list().verticalScrollBar()->value(), list().verticalScrollBar()->maximum());
    press(view(), u"Stop"_s, u"Stop box4999"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><box4999>"_s), 1);
}
