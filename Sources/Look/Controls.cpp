#include "Look/Controls.h"

#include <algorithm>

QPushButton *Controls::button(const QString &label, const QString &description, QWidget *parent)
{
    auto *button = new QPushButton(label, parent);
    // Return belongs to the text field or the alert that has the focus.
    button->setAutoDefault(false);
    button->setAccessibleDescription(description);
#ifndef Q_OS_MACOS
    // Outside macOS the style leaves hardly any room around a long label.
    button->setMinimumWidth(std::max(80, button->fontMetrics().horizontalAdvance(label) + 28));
#endif
    return button;
}

QLineEdit *Controls::textField(const QString &placeholder, QWidget *parent)
{
    auto *field = new QLineEdit(parent);
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(placeholder);
    return field;
}
