#pragma once

// The lower part of the Run screen: the output with its title and buttons, and what there is to say about what of it is
// not shown. Shows the controller's fields and keeps nothing of its own.

#include <QWidget>

class PlainLabel;
class RunController;
struct RunActions;

class OutputSection : public QWidget
{
    Q_OBJECT

public:
    /// `run` and `actions`, which get the buttons, must outlive it.
    OutputSection(RunController &run, const RunActions &actions, QWidget *parent);

private:
    QLayout *makeHeader(const RunActions &actions);
    void showEarlierOutput();
    void showLoss();

    RunController &m_run;
    PlainLabel *m_earlierOutput = nullptr;
    PlainLabel *m_loss = nullptr;
};
