#pragma once

// A window of its own for all output of the current or last run, from its first byte. It goes with the end while its
// reader is there; who has scrolled up or selected something keeps the place, and a button leads to the end. It
// remembers its size and place from one time that it is open to the next.

#include <QList>
#include <QWidget>

class QAction;
class QPushButton;
class OutputPane;
class RunController;

class OutputWindow : public QWidget
{
    Q_OBJECT

public:
    /// Deleted when it is closed. `actions`, which the main window's menus have, are reached from here by their
    /// shortcuts. `run` must outlive the window.
    OutputWindow(RunController &run, const QList<QAction *> &actions);
    ~OutputWindow() override;

private:
    void offerEnd(bool isOffered);

    QWidget *m_title;
    QPushButton *m_jump;
    OutputPane *m_pane;
};
