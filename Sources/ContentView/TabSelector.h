#pragma once

// The row of tabs as a segmented control: a rounded strip whose selected segment is raised. To the keyboard and to
// assistive technology it is a tab bar whose tabs are named by their labels; it takes its own width only.

#include <QTabBar>

class TabSelector : public QTabBar
{
    Q_OBJECT

public:
    explicit TabSelector(QWidget *parent = nullptr);

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override;
    void paintEvent(QPaintEvent *event) override;
};
