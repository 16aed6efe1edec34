#include "Look/TextField.h"

#include "Look/Colours.h"

#include <QApplication>

TextField::TextField(const QString &placeholder, QWidget *parent) : QLineEdit(parent)
{
    setPlaceholderText(placeholder);
    setAccessibleName(placeholder);
    applyColour();
}

void TextField::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
        applyColour();
}

void TextField::applyColour()
{
    // The palette around, because this field's own has the colour already in it.
    const QPalette around = parentWidget() != nullptr ? parentWidget()->palette() : QApplication::palette(this);
    const QColor colour = Colours::placeholder(around);
    if (palette().color(QPalette::PlaceholderText) == colour)
        return;
    QPalette own;
    own.setColor(QPalette::PlaceholderText, colour);
    setPalette(own);
}
