#include "Screens/TestWindow.h"
#include "Screens/TidewellApp/Menus/MenuActions.h"
#include "TidewellApp/MainWindow.h"

using namespace Qt::StringLiterals;

namespace
{

QString item(const QString &label, const QKeySequence &shortcut = {})
{
    return shortcut.isEmpty() ? label : label + u" ("_s + shortcut.toString() + u')';
}

/// The items of a menu in their order, each with its shortcut; a line between them is "-".
QStringList itemsOf(const QMainWindow &window, const QString &menu)
{
    QStringList items;
    for (const QAction *each : window.menuBar()->actions()) {
        if (each->text().remove(u'&') != menu)
            continue;
        for (const QAction *inMenu : each->menu()->actions())
            items.append(inMenu->isSeparator() ? u"-"_s : item(inMenu->text().remove(u'&'), inMenu->shortcut()));
    }
    return items;
}

constexpr auto control = Qt::CTRL;

} // namespace

TEST(Menus, StandInTheirUsualOrder)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    QStringList titles;
    for (const QAction *each : window.menuBar()->actions())
        titles.append(each->text().remove(u'&'));
    EXPECT_EQ(titles, QStringList({u"File"_s, u"Edit"_s, u"View"_s, u"Run"_s, u"Window"_s, u"Help"_s}));
}

TEST(Menus, HoldTheirItemsInTheirOrderWithTheirShortcuts)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    EXPECT_EQ(itemsOf(window, u"File"_s), QStringList({item(u"Open Script…"_s, QKeySequence::Open),
                                                       item(u"Save Script As…"_s, control | Qt::SHIFT | Qt::Key_S),
                                                       item(u"Save Output As…"_s, QKeySequence::Save), u"-"_s,
                                                       item(u"Close Window"_s, QKeySequence::Close),
                                                       item(u"Quit Tidewell"_s, control | Qt::Key_Q)}));
    EXPECT_EQ(
        itemsOf(window, u"Edit"_s),
        QStringList({item(u"Undo"_s, QKeySequence::Undo), item(u"Redo"_s, QKeySequence::Redo), u"-"_s,
                     item(u"Cut"_s, QKeySequence::Cut), item(u"Copy"_s, QKeySequence::Copy),
                     item(u"Paste"_s, QKeySequence::Paste), u"-"_s, item(u"Select All"_s, QKeySequence::SelectAll),
                     u"-"_s, item(u"Find…"_s, control | Qt::Key_F), item(u"Find Next"_s, control | Qt::Key_G),
                     item(u"Find Previous"_s, control | Qt::SHIFT | Qt::Key_G),
                     item(u"Use Selection for Find"_s, control | Qt::Key_E)}));
    EXPECT_EQ(itemsOf(window, u"View"_s),
              QStringList({item(u"Run"_s, control | Qt::Key_1), item(u"Machines"_s, control | Qt::Key_2),
                           item(u"History"_s, control | Qt::Key_3), item(u"Containers"_s, control | Qt::Key_4), u"-"_s,
                           item(u"Refresh"_s, control | Qt::Key_R)}));
    EXPECT_EQ(itemsOf(window, u"Run"_s),
              QStringList({item(u"Run"_s, control | Qt::Key_Return), item(u"Stop"_s, control | Qt::Key_Period), u"-"_s,
                           item(u"Copy Output"_s, control | Qt::SHIFT | Qt::Key_C),
                           item(u"Clear Output"_s, control | Qt::Key_K),
                           item(u"Show All Output"_s, control | Qt::ALT | Qt::Key_O)}));
    EXPECT_EQ(itemsOf(window, u"Window"_s),
              QStringList({item(u"Minimize"_s, control | Qt::Key_M), u"Zoom"_s, u"-"_s, u"Tidewell"_s}));
    EXPECT_EQ(itemsOf(window, u"Help"_s), QStringList({item(u"Tidewell Help"_s, QKeySequence::HelpContents),
                                                       u"OrbStack Website"_s, u"About Tidewell"_s}));
}

TEST(Menus, GiveOnlyAboutAndQuitARoleOfTheirOwnAndLeaveEditToTheSystem)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    for (const QAction *menu : window.menuBar()->actions()) {
        for (const QAction *each : menu->menu()->actions()) {
            if (each->isSeparator())
                continue;
            const QString label = each->text().remove(u'&');
            if (label == u"About Tidewell"_s)
                EXPECT_EQ(each->menuRole(), QAction::AboutRole);
            else if (label == u"Quit Tidewell"_s)
                EXPECT_EQ(each->menuRole(), QAction::QuitRole);
            else if (menu->text() == u"&Edit"_s)
                EXPECT_EQ(each->menuRole(), QAction::TextHeuristicRole) << label.toStdString();
            else
                EXPECT_EQ(each->menuRole(), QAction::NoRole) << label.toStdString();
        }
    }
}

TEST(Menus, MarkTheFirstTabAndOfferNothingToEditFindOrSaveBeforeTheWindowIsShown)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    for (const AppTab tab : allAppTabs)
        EXPECT_EQ(MenuActions::action(window, u"View"_s, rawValue(tab))->isChecked(), tab == AppTab::run);
    for (const QString &label : {u"Undo"_s, u"Redo"_s, u"Cut"_s, u"Copy"_s, u"Paste"_s, u"Select All"_s, u"Find…"_s,
                                 u"Find Next"_s, u"Find Previous"_s, u"Use Selection for Find"_s})
        EXPECT_FALSE(MenuActions::action(window, u"Edit"_s, label)->isEnabled()) << label.toStdString();
    EXPECT_FALSE(MenuActions::action(window, u"File"_s, u"Save Output As…"_s)->isEnabled());
}

TEST(Menus, KeepTheMarkOfATabThatIsChosenAgain)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    QAction *history = MenuActions::action(window, u"View"_s, u"History"_s);
    for (int times = 0; times < 2; ++times) {
        history->trigger();
        EXPECT_TRUE(history->isChecked());
        EXPECT_FALSE(MenuActions::action(window, u"View"_s, u"Run"_s)->isChecked());
    }
}
