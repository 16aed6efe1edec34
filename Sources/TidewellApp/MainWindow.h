#pragma once

// The one window: the menu bar and the content.

#include "ContentView/Controllers.h"

#include <QMainWindow>

class ContentView;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// The controllers must outlive it.
    explicit MainWindow(const Controllers &controllers);

    ContentView &content() { return *m_content; }

private:
    ContentView *m_content;
};
