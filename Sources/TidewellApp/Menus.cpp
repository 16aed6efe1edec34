#include "TidewellApp/Menus.h"

#include "ContentView/ContentView.h"
#include "SetupController/SetupController.h"
#include "TidewellApp/EditMenu.h"

#include <QActionGroup>
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace
{

void openAbout(QWidget &window)
{
    auto *about = new QMessageBox(QMessageBox::NoIcon, u"About Tidewell"_s, u"Tidewell "_s + qApp->applicationVersion(),
                                  QMessageBox::Close, &window);
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->setTextFormat(Qt::PlainText);
    about->setInformativeText(u"Try shell scripts in real Linux machines instead of on your Mac."_s);
    about->open();
}

void addFileMenu(QMainWindow &window)
{
    QMenu *file = window.menuBar()->addMenu(u"&File"_s);
    QAction *close = file->addAction(u"&Close Window"_s, &window, &QWidget::close);
    close->setShortcut(QKeySequence::Close);
    QAction *quit = file->addAction(u"&Quit Tidewell"_s, qApp, &QApplication::quit);
    quit->setMenuRole(QAction::QuitRole);
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
}

void addViewMenu(QMainWindow &window, ContentView &content)
{
    QMenu *view = window.menuBar()->addMenu(u"&View"_s);
    auto *group = new QActionGroup(view);
    for (const AppTab tab : allAppTabs) {
        QAction *action = view->addAction(rawValue(tab), &content, [&content, tab] { content.setTab(tab); });
        action->setMenuRole(QAction::NoRole);
        action->setShortcut(QKeySequence(static_cast<int>(Qt::CTRL) | (Qt::Key_1 + static_cast<int>(tab))));
        action->setCheckable(true);
        action->setChecked(tab == content.tab());
        group->addAction(action);
        QObject::connect(&content, &ContentView::tabChanged, action,
                         [action, tab](AppTab selected) { action->setChecked(tab == selected); });
    }
}

void addWindowMenu(QMainWindow &window)
{
    QMenu *menu = window.menuBar()->addMenu(u"&Window"_s);
    QAction *minimize = menu->addAction(u"&Minimize"_s, &window, &QWidget::showMinimized);
    minimize->setShortcut(Qt::CTRL | Qt::Key_M);
    menu->addAction(u"&Zoom"_s, &window,
                    [&window] { window.isMaximized() ? window.showNormal() : window.showMaximized(); });
}

void addHelpMenu(QMainWindow &window, SetupController &setup)
{
    QMenu *help = window.menuBar()->addMenu(u"&Help"_s);
    help->addAction(u"&OrbStack Website"_s, &setup, &SetupController::openOrbStackSite);
    QAction *about = help->addAction(u"&About Tidewell"_s, &window, [&window] { openAbout(window); });
    about->setMenuRole(QAction::AboutRole);
}

} // namespace

void Menus::add(QMainWindow &window, ContentView &content, SetupController &setup)
{
    addFileMenu(window);
    EditMenu::add(window);
    addViewMenu(window, content);
    addWindowMenu(window);
    addHelpMenu(window, setup);
    // Only the two actions with a role of their own move to the application's menu; none is guessed from its text.
    for (QMenu *menu : window.menuBar()->findChildren<QMenu *>(Qt::FindDirectChildrenOnly)) {
        for (QAction *action : menu->actions()) {
            if (action->menuRole() == QAction::TextHeuristicRole)
                action->setMenuRole(QAction::NoRole);
        }
    }
}
