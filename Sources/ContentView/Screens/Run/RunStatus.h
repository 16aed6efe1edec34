#pragma once

// What is seen of a run while it is going: the button that stops it, a spinner, the current step and the seconds since
// its start.

#include <QTimer>
#include <QWidget>

class PlainLabel;
class QPushButton;
class RunController;

class RunStatus : public QWidget
{
    Q_OBJECT

public:
    /// The focus proxy is the Stop button. `run` must outlive it.
    explicit RunStatus(RunController &run, QWidget *parent = nullptr);

    QPushButton *stopButton() const { return m_stop; }

private:
    void showElapsed();
    void followStart();

    RunController &m_run;
    QPushButton *m_stop;
    PlainLabel *m_phase;
    PlainLabel *m_elapsed;
    QTimer m_second;
};
