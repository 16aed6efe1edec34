#include "TidewellApp/FieldFocus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QLineEdit>

#include <utility>

namespace
{

/// The focus comes from where Qt selects the whole text.
bool selects(const QFocusEvent &event)
{
    const Qt::FocusReason reason = event.reason();
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
}

bool isInput(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
        return true;
    default:
        return false;
    }
}

} // namespace

FieldFocus::FieldFocus(bool (*isListening)()) : m_isListening(isListening)
{
    // On macOS the screen reader asks for the focus itself.
#ifndef Q_OS_MACOS
    QCoreApplication::instance()->installEventFilter(this);
#endif
}

bool FieldFocus::eventFilter(QObject *watched, QEvent *event)
{
    if (m_unselected && watched == m_unselected && isInput(*event))
        selectNow();
    if (event->type() != QEvent::FocusIn || !m_isListening())
        return false;
    auto *field = qobject_cast<QLineEdit *>(watched);
    if (field == nullptr || field->hasSelectedText() || !selects(*static_cast<QFocusEvent *>(event)))
        return false;
    QFocusEvent selectingNothing(QEvent::FocusIn, Qt::OtherFocusReason);
    QCoreApplication::sendEvent(field, &selectingNothing);
    m_unselected = field;
    QMetaObject::invokeMethod(this, &FieldFocus::selectNow, Qt::QueuedConnection);
    return true;
}

void FieldFocus::selectNow()
{
    QLineEdit *field = std::exchange(m_unselected, nullptr);
    if (field != nullptr && field->hasFocus() && !field->text().isEmpty())
        field->selectAll();
}
