#include "Screens/ContentView/Screens/MachinesViewTest.h"

TEST_F(MachinesViewTest, AsksBeforeItDeletes)
{
    show();
    press(view(), u"Delete"_s, u"Delete box"_s);
    ASSERT_NE(alert(), nullptr);
    EXPECT_TRUE(alert()->isVisible());
    EXPECT_EQ(alert()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(alert()->text(), u"Delete box?"_s);
    EXPECT_EQ(alert()->informativeText(), u"The machine and everything inside it will be removed permanently."_s);
    ASSERT_EQ(alert()->buttons().size(), 2);
    const auto *accept = find<QPushButton>(*alert(), u"Delete"_s);
    ASSERT_NE(accept, nullptr);
    EXPECT_EQ(alert()->buttonRole(const_cast<QPushButton *>(accept)), QMessageBox::DestructiveRole);
    EXPECT_FALSE(window.machines.busy());
    press(*alert(), u"Delete"_s);
    EXPECT_TRUE(window.machines.busy());
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<delete><-f><box>"_s), 1);
    EXPECT_EQ(window.machines.log(), u"Deleted box.\n"_s);
    ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
}

TEST_F(MachinesViewTest, LeavesTheMachineAloneWhenTheQuestionIsCancelled)
{
    show();
    const QList<Machine> machines = window.machines.machines();
    for (const bool byKey : {false, true}) {
        press(view(), u"Delete"_s, u"Delete box"_s);
        ASSERT_NE(alert(), nullptr);
        if (byKey)
            QTest::keyClick(alert(), Qt::Key_Escape);
        else
            press(*alert(), u"Cancel"_s);
        ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
        EXPECT_FALSE(window.machines.busy());
        EXPECT_EQ(window.machines.machines(), machines);
        EXPECT_EQ(calls(u"<delete><-f><box>"_s), 0);
        const auto *button = find<QPushButton>(view(), u"Delete"_s, u"Delete box"_s);
        EXPECT_EQ(window.content().window()->focusWidget(), button);
    }
}

TEST_F(MachinesViewTest, KeepsTheQuestionOpenAndBoundToItsMachineThroughRefreshes)
{
    show({u"box"_s, u"web"_s, u"db"_s});
    press(view(), u"Delete"_s, u"Delete web"_s);
    const QPointer<QMessageBox> question = alert();
    window.orbStack.setMachines({u"new"_s, u"other"_s, u"box"_s});
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    ASSERT_EQ(list().count(), 3);
    ASSERT_NE(question, nullptr);
    EXPECT_TRUE(question->isVisible());
    EXPECT_EQ(question->text(), u"Delete web?"_s);
    press(*question, u"Delete"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<delete><-f><web>"_s), 1);
}

TEST_F(MachinesViewTest, TellsOfAMachineThatWentAwayWhileItsDeletionWasAskedFor)
{
    show();
    press(view(), u"Delete"_s, u"Delete box"_s);
    window.orbStack.tools().addTool(u"orb"_s, u"case \"$1\" in list) echo '[]' ;; *) echo \"no machine found\" >&2; "
                                              "exit 1 ;; esac"_s);
    press(*alert(), u"Delete"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(window.machines.log(), u"Delete failed: no machine found\n"_s);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 0; }));
    EXPECT_TRUE(shows(view(), noMachines));
}

TEST_F(MachinesViewTest, GivesTheKeyboardToTheNameWhenTheLastMachineOrOrbStackGoes)
{
    show();
    const auto focusRow = [this] { list().row(list().count() - 1)->buttons().last()->setFocus(); };
    focusRow();
    window.orbStack.setRunning(false);
    window.content().refresh();
    ASSERT_TRUE(waitUntil([this] { return window.setup.state() == OrbState::stopped; }));
    EXPECT_EQ(window.content().focusWidget(), &nameField());
    window.orbStack.setRunning(true);
    window.content().refresh();
    ASSERT_TRUE(waitUntil([this] { return list().isVisible(); }));
    focusRow();
    window.orbStack.setMachines({});
    window.content().refresh();
    ASSERT_TRUE(waitUntil([this] { return list().count() == 0; }));
    EXPECT_EQ(window.content().focusWidget(), &nameField());
}

TEST_F(MachinesViewTest, GoesAwayWithItsQuestion)
{
    show();
    press(view(), u"Delete"_s, u"Delete box"_s);
    const QPointer<QMessageBox> question = alert();
    window.content().setTab(AppTab::run);
    ASSERT_TRUE(waitUntil([&question] { return question == nullptr; }));
    window.content().setTab(AppTab::machines);
    press(view(), u"Delete"_s, u"Delete box"_s);
    window.close();
    EXPECT_FALSE(window.machines.busy());
    EXPECT_EQ(calls(u"<delete><-f><box>"_s), 0);
}

TEST_F(MachinesViewTest, AsksByTheFirstTwoHundredCharactersOfALongName)
{
    const QString longest(200, u'a');
    show({longest, longest + u'b'});
    const auto question = [this](int row) {
        list().row(row)->buttons().last()->click();
        EXPECT_NE(alert(), nullptr);
        const QString text = alert()->text();
        press(*alert(), u"Cancel"_s);
        EXPECT_TRUE(waitUntil([this] { return alert() == nullptr; }));
        return text;
    };
    EXPECT_EQ(question(0), u"Delete "_s + longest + u'?');
    EXPECT_EQ(question(1), u"Delete "_s + longest + u"…?"_s);
}
