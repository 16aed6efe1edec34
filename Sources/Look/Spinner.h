#pragma once

// A small turning wheel: something is going on. Turns only while it is visible.

#include <QBasicTimer>
#include <QProgressBar>

/// A progress bar of unknown length to assistive technology, a wheel to the eye.
class Spinner : public QProgressBar
{
    Q_OBJECT

public:
    explicit Spinner(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QBasicTimer m_turn;
    int m_step = 0;
};
