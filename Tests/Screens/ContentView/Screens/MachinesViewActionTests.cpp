#include "Screens/ContentView/Screens/MachinesViewTest.h"

TEST_F(MachinesViewTest, CreatesTheChosenDistributionUnderTheTrimmedName)
{
    show();
    view().findChild<QComboBox *>()->setCurrentIndex(2);
    nameField().setText(u" \tscratch  "_s);
    press(view(), u"Create"_s);
    EXPECT_TRUE(window.machines.busy());
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<create><alpine><scratch>"_s), 1);
    EXPECT_EQ(nameField().text(), u" \tscratch  "_s);
    EXPECT_TRUE(window.machines.log().contains(u"Machine scratch is ready."_s));
}

TEST_F(MachinesViewTest, ExplainsARejectedNameInTheLogAndLetsItBeCorrected)
{
    show();
    nameField().setText(u"Scratch"_s);
    press(view(), u"Create"_s);
    EXPECT_FALSE(window.machines.busy());
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    ASSERT_TRUE(waitUntil([log] { return !log->shownText().isEmpty(); }));
    EXPECT_EQ(log->shownText(), u"Use lowercase letters, digits and dashes for the name.\n"_s);
    EXPECT_EQ(log->height(), 80);
    EXPECT_EQ(nameField().text(), u"Scratch"_s);
    nameField().setText(u"box"_s);
    press(view(), u"Create"_s);
    ASSERT_TRUE(waitUntil([log] { return log->shownText() == u"A machine named box already exists.\n"_s; }));
}

TEST_F(MachinesViewTest, ShowsTheLogOfACreationGrowingAndDisablesAllElse)
{
    show();
    holdOperations(u"fetching\\n"_s);
    nameField().setText(u"scratch"_s);
    press(view(), u"Create"_s);
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    ASSERT_TRUE(waitUntil([log] { return log->shownText() == u"$ orb create ubuntu scratch\nfetching\n"_s; }));
    EXPECT_NE(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_FALSE(isOffered(view(), u"Create"_s));
    for (const RowWidget *row : {list().row(0), list().row(1)}) {
        for (const QPushButton *button : row->buttons())
            EXPECT_FALSE(button->isEnabled());
    }
    release();
    ASSERT_TRUE(untilIdle());
    ASSERT_TRUE(waitUntil([log] { return log->shownText().endsWith(u"\nMachine scratch is ready.\n"_s); }));
    EXPECT_EQ(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_TRUE(isOffered(view(), u"Create"_s));
    EXPECT_TRUE(isOffered(view(), u"Delete"_s, u"Delete box"_s));
}

TEST_F(MachinesViewTest, StartsAndStopsTheMachineOfTheRow)
{
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(R"([{"name":"up","state":"running"},{"name":"down","state":"stopped"}])");
    window.show().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 2; }));
    press(view(), u"Start"_s, u"Start down"_s);
    ASSERT_TRUE(untilIdle());
    press(view(), u"Stop"_s, u"Stop up"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<start><down>"_s), 1);
    EXPECT_EQ(calls(u"<stop><up>"_s), 1);
}

TEST_F(MachinesViewTest, AnswersTwoQuickPressesOnce)
{
    show();
    holdOperations();
    QPushButton *stop = find<QPushButton>(view(), u"Stop"_s, u"Stop box"_s);
    QTest::mouseClick(stop, Qt::LeftButton);
    QTest::mouseClick(stop, Qt::LeftButton);
    release();
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><box>"_s), 1);
    nameField().setText(u"scratch"_s);
    QPushButton *create = find<QPushButton>(view(), u"Create"_s);
    QTest::mouseClick(create, Qt::LeftButton);
    QTest::mouseClick(create, Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<create><ubuntu><scratch>"_s), 1);
    QPushButton *remove = find<QPushButton>(view(), u"Delete"_s, u"Delete box"_s);
    QTest::mouseClick(remove, Qt::LeftButton);
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_EQ(window.content().findChildren<QMessageBox *>().size(), 1);
    auto *accept = find<QPushButton>(*alert(), u"Delete"_s);
    QTest::mouseClick(accept, Qt::LeftButton);
    QTest::mouseClick(accept, Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<delete><-f><box>"_s), 1);
    window.orbStack.setMachineList(R"([{"name":"box","state":"stopped"}])");
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    QPushButton *start = find<QPushButton>(view(), u"Start"_s, u"Start box"_s);
    QTest::mouseClick(start, Qt::LeftButton);
    QTest::mouseClick(start, Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<start><box>"_s), 1);
}

TEST_F(MachinesViewTest, TellsOfAMachineThatWentAwayBeforeThePress)
{
    show();
    window.orbStack.tools().addTool(
        u"orb"_s, u"case \"$1\" in list) echo '[]' ;; *) echo \"no machine found: '$2'\" >&2; exit 1 ;; esac"_s);
    press(view(), u"Stop"_s, u"Stop box"_s);
    ASSERT_TRUE(untilIdle());
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    ASSERT_TRUE(waitUntil([log] { return log->shownText() == u"orb stop box failed: no machine found: 'box'\n"_s; }));
    ASSERT_TRUE(waitUntil([this] { return list().count() == 0; }));
}

TEST_F(MachinesViewTest, GoesOnWithAnOperationWhileAnotherTabIsShown)
{
    show();
    holdOperations(u"fetching\\n"_s);
    nameField().setText(u"scratch"_s);
    press(view(), u"Create"_s);
    window.content().setTab(AppTab::run);
    QTest::qWait(0);
    window.content().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChildren<MachinesView *>().size() == 1; }));
    EXPECT_EQ(nameField().text(), QString());
    EXPECT_NE(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_FALSE(isOffered(view(), u"Stop"_s, u"Stop box"_s));
    release();
    ASSERT_TRUE(untilIdle());
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    ASSERT_TRUE(waitUntil([log] { return log->shownText().endsWith(u"fetching\n\nMachine scratch is ready.\n"_s); }));
}

TEST_F(MachinesViewTest, IsUsableByKeyboardAlone)
{
    show();
    nameField().setFocus();
    QTest::keyClicks(&nameField(), u"scratch"_s);
    const auto press = [](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    };
    press(Qt::Key_Tab);
    EXPECT_EQ(ByName::nameOf(QApplication::focusWidget()), u"Create"_s);
    press(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<create><ubuntu><scratch>"_s), 1);
    // The button was disabled meanwhile; the keyboard waits beside it.
    EXPECT_EQ(QApplication::focusWidget(), &nameField());
    press(Qt::Key_Tab);
    press(Qt::Key_Tab); // the log
    if (ByName::nameOf(QApplication::focusWidget()) == u"Machine log"_s)
        press(Qt::Key_Tab);
    EXPECT_EQ(ByName::descriptionOf(QApplication::focusWidget()), u"Stop box"_s);
    press(Qt::Key_Down);
    EXPECT_EQ(ByName::descriptionOf(QApplication::focusWidget()), u"Stop web"_s);
    press(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><web>"_s), 1);
    EXPECT_EQ(ByName::descriptionOf(QApplication::focusWidget()), u"Stop web"_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(ByName::descriptionOf(QApplication::focusWidget()), u"Delete web"_s);
    press(Qt::Key_Space);
    ASSERT_NE(alert(), nullptr);
    ASSERT_TRUE(waitUntil([this] { return alert()->isActiveWindow(); }));
    QPushButton *accept = find<QPushButton>(*alert(), u"Delete"_s);
    for (int tabs = 0; tabs < 3 && QApplication::focusWidget() != accept; ++tabs)
        press(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), accept);
    press(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<delete><-f><web>"_s), 1);
}

TEST_F(MachinesViewTest, CreatesOnReturnInTheNameField)
{
    show();
    nameField().setText(u"scratch"_s);
    QTest::keyClick(&nameField(), Qt::Key_Return);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<create><ubuntu><scratch>"_s), 1);
    nameField().setText(u" "_s);
    QTest::keyClick(&nameField(), Qt::Key_Return);
    EXPECT_FALSE(window.machines.busy());
}
