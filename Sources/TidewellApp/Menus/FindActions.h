#pragma once

// The items of the menu Edit for finding a text in the output of the window in front, whichever that is. They are
// enabled while there is output in it.

#include <QAction>
#include <QObject>

class ContentView;
class RunController;

class FindActions : public QObject
{
    Q_OBJECT

public:
    /// `content` and `run` must outlive the actions.
    FindActions(const ContentView &content, const RunController &run, QObject *parent = nullptr);

    /// In their order.
    QList<QAction *> all() const { return m_actions; }

private:
    template <typename Slot>
    void add(const QString &text, const QKeySequence &shortcut, Slot slot);
    void followWindow();

    QList<QAction *> m_actions;
};
