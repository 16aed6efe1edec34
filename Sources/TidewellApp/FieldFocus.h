#pragma once

// Tells assistive technology of the focus on a field of one line before the field selects its text.
//
// Qt selects first, and a screen reader that hears of the caret before the focus takes the field for one that it has
// spoken already, and stays silent.

#include <QAccessible>
#include <QObject>
#include <QPointer>

class QLineEdit;

class FieldFocus : public QObject
{
    Q_OBJECT

public:
    /// For every field of the application, also those in Qt's own dialogs, as long as this lives. Does nothing while no
    /// assistive technology is there, which `isListening` tells.
    explicit FieldFocus(bool (*isListening)() = QAccessible::isActive);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void selectNow();

    bool (*const m_isListening)();
    /// Has got the focus, and its text is still to be selected.
    QPointer<QLineEdit> m_unselected;
};
