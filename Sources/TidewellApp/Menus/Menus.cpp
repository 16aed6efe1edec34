#include "TidewellApp/Menus/Menus.h"

#include "ContentView/ContentView.h"
#include "ContentView/Controllers.h"
#include "Look/Alert.h"
#include "SetupController/SetupController.h"
#include "TidewellApp/HelpWindow.h"
#include "TidewellApp/MainWindow.h"
#include "TidewellApp/Menus/EditMenu.h"
#include "TidewellApp/Menus/FileMenu.h"

#include <QActionGroup>
#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace
{

void addViewMenu(QMainWindow &window, ContentView &content)
{
    QMenu *view = window.menuBar()->addMenu(u"&View"_s);
    auto *group = new QActionGroup(view);
    for (const AppTab tab : allAppTabs) {
        QAction *action = view->addAction(rawValue(tab), &content, [&content, tab] { content.setTab(tab); });
        action->setShortcut(QKeySequence(static_cast<int>(Qt::CTRL) | (Qt::Key_1 + static_cast<int>(tab))));
        action->setCheckable(true);
        action->setChecked(tab == content.tab());
        group->addAction(action);
        QObject::connect(&content, &ContentView::tabChanged, action,
                         [action, tab](AppTab selected) { action->setChecked(tab == selected); });
    }
    view->addSeparator();
    QAction *refresh = view->addAction(u"Re&fresh"_s, &content, &ContentView::refresh);
    refresh->setShortcut(Qt::CTRL | Qt::Key_R);
    refresh->setAutoRepeat(false); // each asks three tools
}

void addRunMenu(MainWindow &window)
{
    QMenu *run = window.menuBar()->addMenu(u"&Run"_s);
    const RunActions &actions = window.content().runActions();
    run->addActions({actions.run, actions.stop});
    run->addSeparator();
    run->addActions({actions.copyOutput, actions.clearOutput});
    QAction *showAll = run->addAction(u"Show &All Output"_s, &window, &MainWindow::showAllOutput);
    showAll->setShortcut(Qt::CTRL | Qt::ALT | Qt::Key_O);
}

/// On macOS the menus are those of whatever window is in front, or of the one to which a sheet in front belongs.
QWidget &frontWindow(QMainWindow &window)
{
    QWidget *front = QApplication::activeWindow();
    while (qobject_cast<QDialog *>(front) != nullptr && front->parentWidget() != nullptr)
        front = front->parentWidget()->window();
    return front != nullptr ? *front : window;
}

void addWindowMenu(QMainWindow &window)
{
    QMenu *menu = window.menuBar()->addMenu(u"&Window"_s);
    // On macOS the menu bar and its shortcuts stay when the window is hidden, which must not come back half-way.
    QAction *minimize = menu->addAction(u"&Minimize"_s, &window, [&window] {
        QWidget &front = frontWindow(window);
        if (front.isVisible())
            front.showMinimized();
    });
    minimize->setShortcut(Qt::CTRL | Qt::Key_M);
    QAction *zoom = menu->addAction(u"&Zoom"_s, &window, [&window] {
        QWidget &front = frontWindow(window);
        if (front.isVisible())
            front.isMaximized() ? front.showNormal() : front.showMaximized();
    });
    const auto setEnabled = [minimize, zoom](bool isEnabled) {
        minimize->setEnabled(isEnabled);
        zoom->setEnabled(isEnabled);
    };
    QObject::connect(menu, &QMenu::aboutToShow, &window,
                     [&window, setEnabled] { setEnabled(frontWindow(window).isVisible()); });
    // A shortcut asks nobody to show the menu.
    QObject::connect(menu, &QMenu::aboutToHide, &window, [setEnabled] { setEnabled(true); });
    menu->addSeparator();
    menu->addAction(u"&Tidewell"_s, &window, [&window] {
        window.show();
        window.raise();
        window.activateWindow();
    });
}

void addHelpMenu(QMainWindow &window, SetupController &setup)
{
    QMenu *help = window.menuBar()->addMenu(u"&Help"_s);
    QAction *page = help->addAction(u"Tidewell &Help"_s, &window, [&window] { HelpWindow::show(window); });
    page->setShortcut(QKeySequence::HelpContents);
    help->addAction(u"&OrbStack Website"_s, &setup, &SetupController::openOrbStackSite);
    QAction *about = help->addAction(u"&About Tidewell"_s, &window, [&window] {
        Alert::tell(&window, u"Tidewell "_s + qApp->applicationVersion(),
                    u"Try shell scripts in real Linux machines instead of on your Mac."_s);
    });
    about->setMenuRole(QAction::AboutRole);
}

/// Of no other item the place is guessed from its text; only those of Edit keep that role, by which the system's own
/// panels find Copy and Paste.
void keepInPlace(QMenu &menu)
{
    for (QAction *action : menu.actions()) {
        if (action->menuRole() == QAction::TextHeuristicRole)
            action->setMenuRole(QAction::NoRole);
    }
}

} // namespace

void Menus::add(MainWindow &window, const Controllers &controllers)
{
    ContentView &content = window.content();
    FileMenu::add(window, content, controllers.run, window.saving().action());
    QMenu *edit = EditMenu::add(window, window.findActions());
    addViewMenu(window, content);
    addRunMenu(window);
    addWindowMenu(window);
    addHelpMenu(window, controllers.setup);
    for (QMenu *menu : window.menuBar()->findChildren<QMenu *>(Qt::FindDirectChildrenOnly)) {
        if (menu != edit)
            keepInPlace(*menu);
    }
}
