#include "ContentView/ContentView.h"
#include "Screens/TestWindow.h"
#include "TidewellApp/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

namespace
{

QAction *action(const QMainWindow &window, const QString &menu, const QString &label)
{
    for (const QAction *each : window.menuBar()->actions()) {
        if (each->text().remove(u'&') != menu)
            continue;
        for (QAction *inMenu : each->menu()->actions()) {
            if (inMenu->text().remove(u'&') == label)
                return inMenu;
        }
    }
    ADD_FAILURE() << "no " << menu.toStdString() << " > " << label.toStdString();
    return nullptr;
}

} // namespace

TEST(Menus, StandInTheirUsualOrder)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    QStringList titles;
    for (const QAction *each : window.menuBar()->actions())
        titles.append(each->text().remove(u'&'));
    EXPECT_EQ(titles, QStringList({u"File"_s, u"Edit"_s, u"View"_s, u"Window"_s, u"Help"_s}));
}

TEST(Menus, GiveOnlyAboutAndQuitARoleOfTheirOwn)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    for (const QAction *menu : window.menuBar()->actions()) {
        for (const QAction *each : menu->menu()->actions()) {
            const QString label = each->text().remove(u'&');
            if (label == u"About Tidewell"_s)
                EXPECT_EQ(each->menuRole(), QAction::AboutRole);
            else if (label == u"Quit Tidewell"_s)
                EXPECT_EQ(each->menuRole(), QAction::QuitRole);
            else
                EXPECT_EQ(each->menuRole(), QAction::NoRole) << label.toStdString();
        }
    }
}

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

TEST(Menus, OpenTheWebsiteAndTheAboutBoxWithoutBlocking)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    QString opened;
    QObject::connect(&tools.setup, &SetupController::siteRequested, [&opened](const QString &site) { opened = site; });
    action(window, u"Help"_s, u"OrbStack Website"_s)->trigger();
    EXPECT_EQ(opened, u"https://orbstack.dev"_s);
    action(window, u"Help"_s, u"About Tidewell"_s)->trigger();
    const auto *about = window.findChild<QMessageBox *>();
    ASSERT_NE(about, nullptr);
    EXPECT_TRUE(about->isVisible());
    EXPECT_EQ(about->textFormat(), Qt::PlainText);
}
