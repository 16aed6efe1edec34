#pragma once

// A thin bar that moves while something of unknown length goes on. On macOS it is the system's own; elsewhere the
// system's looks, when it is thin or does not move, like one that is full, so there a part of the bar wanders.

#include <QBasicTimer>
#include <QProgressBar>

class IndeterminateBar : public QProgressBar
{
    Q_OBJECT

public:
    explicit IndeterminateBar(QWidget *parent = nullptr);

#ifndef Q_OS_MACOS
protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QBasicTimer m_turn;
    int m_step = 0;
#endif
};
