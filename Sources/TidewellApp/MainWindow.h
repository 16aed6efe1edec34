#pragma once

// The one window: the menu bar and the content. It remembers its size and place from one start to the next, and asks
// for attention when a run has ended while the user was elsewhere.

#include "ContentView/Controllers.h"

#include <QMainWindow>

class ContentView;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// The controllers must outlive it.
    explicit MainWindow(const Controllers &controllers);
    ~MainWindow() override;

    ContentView &content() { return *m_content; }

    /// Shows the window, also one that is hidden or minimised, above others and with the keyboard.
    void comeForward();

Q_SIGNALS:
    /// A run has ended while another application was in use.
    void attentionWanted();

private:
    void restorePlace();

    ContentView *m_content;
};
