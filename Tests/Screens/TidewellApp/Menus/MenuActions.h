#pragma once

// The items of a window's menu bar, by their labels.

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include <gtest/gtest.h>

namespace MenuActions
{

/// The item "Find…" of the menu "Edit"; null and a failed expectation when there is none.
inline QAction *action(const QMainWindow &window, const QString &menu, const QString &label)
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

} // namespace MenuActions
