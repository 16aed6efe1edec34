#include "Look/Picker.h"

#include "Look/Accessibility/PickerAccessibility.h"
#include "Look/Colours.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"

#include <QStyleOptionComboBox>
#include <QWheelEvent>

namespace
{

/// What styles leave free beside the text within its place.
constexpr int sidesOfText = 4;

} // namespace

Picker::Picker(const QString &label, Label kind, QWidget *parent) : QComboBox(parent)
{
    PickerAccessibility::install();
    setAccessibleName(label);
    connect(this, &QComboBox::currentTextChanged, this, [this] { PickerAccessibility::announceChoice(*this); });
    if (kind == Label::visible)
        return;
    auto *invisible = new PlainLabel(label, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd, parent);
    invisible->hide();
    invisible->setBuddy(this);
}

void Picker::initStyleOption(QStyleOptionComboBox *option) const
{
    QComboBox::initStyleOption(option);
    const QRect place = style()->subControlRect(QStyle::CC_ComboBox, option, QStyle::SC_ComboBoxEditField, this);
    option->currentText =
        option->fontMetrics.elidedText(option->currentText, Qt::ElideRight, place.width() - sidesOfText);
}

void Picker::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
