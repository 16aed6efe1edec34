#pragma once

// The main window: the menu bar and the content; it holds the one window of all output, and what saves it. It remembers
// its size and place from one start to the next, and asks for attention when a run has ended while the user was
// elsewhere.

#include "ContentView/Controllers.h"
#include "TidewellApp/Files/OutputSaving.h"
#include "TidewellApp/Menus/FindActions.h"

#include <QMainWindow>
#include <QPointer>

class ContentView;
class OutputWindow;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// The controllers must outlive it.
    explicit MainWindow(const Controllers &controllers);
    ~MainWindow() override;

    ContentView &content() { return *m_content; }
    OutputSaving &saving() { return m_saving; }
    const FindActions &findActions() const { return m_findActions; }

    /// Brings the window of all output forward; makes it when it is not there.
    void showAllOutput();

    /// Shows the window, also one that is hidden or minimised, above others and with the keyboard.
    void comeForward();

Q_SIGNALS:
    /// A run has ended while another application was in use.
    void attentionWanted();

private:
    RunController &m_run;
    ContentView *m_content;
    OutputSaving m_saving;
    const FindActions m_findActions;
    QPointer<OutputWindow> m_allOutput;
};
