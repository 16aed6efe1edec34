#pragma once

// What a button does, also offered elsewhere: by a menu item and a shortcut. It is enabled exactly while its button can
// be pressed, so that nothing decides twice whether something is possible. Main thread.

#include <QAbstractButton>
#include <QAction>

class ButtonAction : public QAction
{
    Q_OBJECT

public:
    /// Disabled until it has a button.
    ButtonAction(const QString &text, const QList<QKeySequence> &shortcuts, QObject *parent);

    /// From now on this presses `button` and is enabled while that is shown and enabled; disabled once it is gone.
    void setButton(QAbstractButton *button);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void followButton();

    /// Null when there is none, or no longer.
    QAbstractButton *m_button = nullptr;
};
