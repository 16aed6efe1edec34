#include "ContentView/ContentView.h"
#include "OutputPane/OutputPane.h"
#include "Screens/TestWindow.h"
#include "Screens/TidewellApp/Menus/MenuActions.h"
#include "TidewellApp/MainWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextBrowser>

using namespace Qt::StringLiterals;
using MenuActions::action;

TEST(Menus, ChangeTabsByShortcutAndMarkTheSelectedOne)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(window.content().tab(), AppTab::history);
    EXPECT_TRUE(action(window, u"View"_s, u"History"_s)->isChecked());
    EXPECT_FALSE(action(window, u"View"_s, u"Run"_s)->isChecked());
    QTest::keyClick(&window, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window.content().tab(), AppTab::run);
    EXPECT_TRUE(action(window, u"View"_s, u"Run"_s)->isChecked());
    EXPECT_EQ(ByName::nameOf(window.focusWidget()), u"Script"_s);
}

TEST(Menus, EditWhatHadTheFocusBeforeAMenuWasOpenedByTheKeyboard)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto *editor = ByName::find<QPlainTextEdit>(window, u"Script"_s);
    editor->setFocus();
    editor->setPlainText(u"one"_s);
    editor->selectAll();
    window.menuBar()->setFocus(Qt::MenuBarFocusReason);
    ASSERT_TRUE(window.menuBar()->hasFocus());
    EXPECT_TRUE(action(window, u"Edit"_s, u"Copy"_s)->isEnabled());
    action(window, u"Edit"_s, u"Cut"_s)->trigger();
    EXPECT_EQ(editor->toPlainText(), QString());
}

TEST(Menus, EditWhatHasTheFocus)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    tools.run.setScript(u"copy me"_s);
    action(window, u"Edit"_s, u"Select All"_s)->trigger();
    action(window, u"Edit"_s, u"Cut"_s)->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"copy me"_s);
    EXPECT_EQ(tools.run.script(), QString());
    action(window, u"Edit"_s, u"Paste"_s)->trigger();
    EXPECT_EQ(tools.run.script(), u"copy me"_s);
    action(window, u"Edit"_s, u"Undo"_s)->trigger();
    EXPECT_EQ(tools.run.script(), QString());
    ByName::find<QAbstractButton>(window, u"Copy output"_s)->setFocus();
    EXPECT_FALSE(action(window, u"Edit"_s, u"Paste"_s)->isEnabled());
    ByName::find<QPlainTextEdit>(window, u"Script"_s)->setFocus();
    EXPECT_TRUE(action(window, u"Edit"_s, u"Paste"_s)->isEnabled());
}

TEST(Menus, FindInTheOutputByShortcutFromAnywhereInTheWindow)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const QAction *find = action(window, u"Edit"_s, u"Find…"_s);
    const QAction *next = action(window, u"Edit"_s, u"Find Next"_s);
    EXPECT_FALSE(find->isEnabled()) << "there is no output";
    tools.run.append(u"one two One\n"_s, OutputKind::out);
    EXPECT_TRUE(find->isEnabled());
    const QPointer<OutputPane> pane = window.findChild<OutputPane *>();
    ASSERT_EQ(ByName::nameOf(window.focusWidget()), u"Script"_s);
    QTest::keyClick(window.focusWidget(), Qt::Key_F, Qt::ControlModifier);
    ASSERT_EQ(ByName::nameOf(window.focusWidget()), u"Find in output"_s);
    QTest::keyClicks(window.focusWidget(), u"one"_s);
    EXPECT_TRUE(waitUntil([&] { return ByName::shows(window, u"1 of 2"_s); }));
    QTest::keyClick(window.focusWidget(), Qt::Key_G, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([&] { return pane->selectedText() == u"One"_s; }));
    QTest::keyClick(window.focusWidget(), Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(waitUntil([&] { return pane->selectedText() == u"one"_s; }));
    QTest::keyClick(window.focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(ByName::nameOf(window.focusWidget()), u"Script"_s);

    pane->setFocus();
    pane->select(4, 7);
    QTest::keyClick(window.focusWidget(), Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([&] { return ByName::shows(window, u"1 of 1"_s); }));
    EXPECT_EQ(ByName::find<QLineEdit>(window, u"Find in output"_s)->text(), u"two"_s);

    window.content().setTab(AppTab::machines);
    EXPECT_FALSE(find->isEnabled()) << "no output is shown";
    EXPECT_FALSE(next->isEnabled());
    EXPECT_TRUE(waitUntil([&] { return pane.isNull(); }));
    window.content().setTab(AppTab::run);
    EXPECT_TRUE(find->isEnabled());
    tools.run.clearTranscript();
    EXPECT_FALSE(find->isEnabled());
}

TEST(Menus, OfferTheRunScreensActionsExactlyWhileTheirButtonsAreThere)
{
    TestWindow tools;
    tools.orbStack.setRunning(true);
    tools.orbStack.setMachines({u"box"_s});
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const QAction *run = action(window, u"Run"_s, u"Run"_s);
    const QAction *stop = action(window, u"Run"_s, u"Stop"_s);
    const QAction *copy = action(window, u"Run"_s, u"Copy Output"_s);
    EXPECT_FALSE(run->isEnabled()) << "there is no script yet";
    EXPECT_FALSE(stop->isEnabled());
    EXPECT_TRUE(copy->isEnabled());
    tools.run.setScript(u"echo hello"_s);
    EXPECT_TRUE(waitUntil([run] { return run->isEnabled(); }));
    window.content().setTab(AppTab::machines);
    for (const QAction *each : {run, stop, copy})
        EXPECT_FALSE(each->isEnabled()) << each->text().toStdString();
    window.content().setTab(AppTab::run);
    EXPECT_TRUE(waitUntil([run] { return run->isEnabled(); }));
}

TEST(Menus, RunAndStopByShortcut)
{
    TestWindow tools;
    tools.orbStack.setRunning(true);
    tools.orbStack.setMachines({u"box"_s});
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    tools.run.setScript(u"exec sleep 600"_s);
    ASSERT_TRUE(waitUntil([&] { return action(window, u"Run"_s, u"Run"_s)->isEnabled(); }));
    QTest::keyClick(window.focusWidget(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(tools.run.isRunning()) << "at once, without the press being shown first";
    EXPECT_TRUE(action(window, u"Run"_s, u"Stop"_s)->isEnabled());
    EXPECT_FALSE(action(window, u"Run"_s, u"Run"_s)->isEnabled());
    QTest::keyClick(window.focusWidget(), Qt::Key_Period, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([&] { return !tools.run.isRunning(); }));
}

TEST(Menus, CopyAndClearTheOutputByShortcut)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    tools.run.append(u"some output\n"_s, OutputKind::out);
    QTest::keyClick(window.focusWidget(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"some output\n"_s);
    QTest::keyClick(window.focusWidget(), Qt::Key_K, Qt::ControlModifier);
    EXPECT_TRUE(tools.run.transcript().isEmpty());
}

TEST(Menus, RefreshAsksTheToolsAnew)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(waitUntil([&] { return tools.setup.state() == OrbState::stopped; }));
    tools.orbStack.setRunning(true);
    action(window, u"View"_s, u"Refresh"_s)->trigger();
    EXPECT_TRUE(waitUntil([&] { return tools.setup.state() == OrbState::running; }));
}

TEST(Menus, CloseTheWindowInFront)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    for (const bool byShortcut : {false, true}) {
        action(window, u"Help"_s, u"Tidewell Help"_s)->trigger();
        const QPointer<QTextBrowser> help = window.findChild<QTextBrowser *>();
        ASSERT_TRUE(QTest::qWaitForWindowActive(help));
        if (byShortcut)
            QTest::keySequence(help, QKeySequence::Close);
        else
            action(window, u"File"_s, u"Close Window"_s)->trigger();
        EXPECT_TRUE(waitUntil([&help] { return help == nullptr; }));
        EXPECT_TRUE(window.isVisible());
    }
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    action(window, u"File"_s, u"Close Window"_s)->trigger();
    EXPECT_FALSE(window.isVisible());
}

TEST(Menus, OfferUndoRedoCutAndCopyOnlyWithSomethingToDoItTo)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const auto offered = [&window] {
        QStringList labels;
        for (const QString &label : {u"Undo"_s, u"Redo"_s, u"Cut"_s, u"Copy"_s}) {
            if (action(window, u"Edit"_s, label)->isEnabled())
                labels.append(label);
        }
        return labels;
    };
    for (QWidget *widget : {static_cast<QWidget *>(ByName::find<QPlainTextEdit>(window, u"Script"_s)),
                            static_cast<QWidget *>(ByName::find<QLineEdit>(window, u"Packages, e.g. git curl"_s))}) {
        widget->setFocus();
        EXPECT_EQ(offered(), QStringList());
        QTest::keyClicks(widget, u"git"_s);
        EXPECT_EQ(offered(), QStringList{u"Undo"_s});
        QTest::keySequence(widget, QKeySequence::SelectAll);
        EXPECT_EQ(offered(), QStringList({u"Undo"_s, u"Cut"_s, u"Copy"_s}));
        action(window, u"Edit"_s, u"Undo"_s)->trigger();
        EXPECT_EQ(offered(), QStringList{u"Redo"_s});
        action(window, u"Edit"_s, u"Redo"_s)->trigger();
        EXPECT_TRUE(offered().contains(u"Undo"_s));
    }
    tools.run.append(u"some output\n"_s, OutputKind::out);
    auto *pane = window.findChild<OutputPane *>();
    pane->setFocus();
    EXPECT_EQ(offered(), QStringList());
    action(window, u"Edit"_s, u"Select All"_s)->trigger();
    EXPECT_EQ(offered(), QStringList{u"Copy"_s});
}
