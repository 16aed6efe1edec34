#pragma once

// The row of tabs as a segmented control: a rounded strip whose selected segment is raised; it takes its own width
// only. The wheel selects nothing here: another tab discards what was typed.
//
// To the keyboard and to assistive technology it is a list of tabs named by their labels, of which the selected one has
// the focus: a tab bar of Qt's keeps the focus to itself, so that a screen reader speaks neither tab nor place.

#include <QTabBar>

class TabSelector;

/// One tab as a place of the focus, lying unseen on its segment.
class TabStop : public QWidget
{
    Q_OBJECT

public:
    explicit TabStop(TabSelector *selector);

    TabSelector &selector() const;
    int index() const;
};

class TabSelector : public QTabBar
{
    Q_OBJECT

public:
    explicit TabSelector(QWidget *parent = nullptr);

    /// In the order of the tabs.
    const QList<TabStop *> &stops() const { return m_stops; }

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override;
    void tabInserted(int index) override;
    void tabLayoutChange() override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void followSelection();

    QList<TabStop *> m_stops;
};
