#include "ContentView/ButtonAction.h"

#include <QEvent>

ButtonAction::ButtonAction(const QString &text, const QList<QKeySequence> &shortcuts, QObject *parent)
    : QAction(text, parent)
{
    setShortcuts(shortcuts);
    setEnabled(false);
    // Whoever holds the keys means it once, also where the button comes back meanwhile.
    setAutoRepeat(false);
    connect(this, &QAction::triggered, this, [this] {
        if (m_button != nullptr)
            m_button->click();
    });
}

void ButtonAction::setButton(QAbstractButton *button)
{
    if (m_button != nullptr)
        m_button->removeEventFilter(this);
    m_button = button;
    button->installEventFilter(this);
    // By its address alone: when this is told, the button is hardly more than an object.
    connect(button, &QObject::destroyed, this, [this, button] {
        if (m_button != button)
            return;
        m_button = nullptr;
        setEnabled(false);
    });
    followButton();
}

bool ButtonAction::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::EnabledChange || event->type() == QEvent::Show || event->type() == QEvent::Hide)
        followButton();
    return QAction::eventFilter(watched, event);
}

void ButtonAction::followButton()
{
    setEnabled(m_button != nullptr && m_button->isEnabled() && m_button->isVisible());
}
