#pragma once

// What shows that something of unknown length goes on: a bar across the window, a wheel in a row of controls.

#include <QBasicTimer>
#include <QProgressBar>

/// The common part: to assistive technology a progress bar of unknown length, to the eye something that moves while it
/// is visible, in steps that start again after the last.
class IndeterminateProgress : public QProgressBar
{
    Q_OBJECT

protected:
    explicit IndeterminateProgress(QWidget *parent);

    /// From now on moves by itself, in so many steps; the style moves what never asks for this.
    void setMotion(int steps, int millisecondsPerStep);

    /// The step to paint, from 0 on.
    int step() const { return m_step; }

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    int m_steps = 0;
    int m_millisecondsPerStep = 0;
    int m_step = 0;
    QBasicTimer m_timer;
};

/// A thin bar. On macOS it is the system's own; elsewhere the system's looks, when it is thin or does not move, like
/// one that is full, so there a part of the bar wanders.
class IndeterminateBar : public IndeterminateProgress
{
    Q_OBJECT

public:
    explicit IndeterminateBar(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// A small turning wheel.
class Spinner : public IndeterminateProgress
{
    Q_OBJECT

public:
    explicit Spinner(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
