#pragma once

#include "ContentView/ButtonAction.h"

/// What the buttons of the Run screen do, for menus and shortcuts. They outlive the screen, which is there only while
/// its tab is selected: without it they are disabled.
struct RunActions {
    explicit RunActions(QObject *parent);

    ButtonAction *run;
    ButtonAction *stop;
    ButtonAction *copyOutput;
    ButtonAction *clearOutput;

    /// In the order in which a menu shows them.
    QList<QAction *> all() const { return {run, stop, copyOutput, clearOutput}; }
};
