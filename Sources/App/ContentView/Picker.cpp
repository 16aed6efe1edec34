#include "ContentView/Picker.h"

#include "ContentView/Colours.h"
#include "ContentView/PlainLabel.h"
#include "ContentView/Typography.h"

#include <QWheelEvent>

Picker::Picker(const QString &label, Label kind, QWidget *parent) : QComboBox(parent)
{
    setAccessibleName(label);
    if (kind == Label::visible)
        return;
    auto *invisible = new PlainLabel(label, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd, parent);
    invisible->hide();
    invisible->setBuddy(this);
}

void Picker::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
