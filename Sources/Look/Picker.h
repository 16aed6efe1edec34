#pragma once

// A pop-up list of choices. Scrolling the screen over it chooses nothing.
//
// Where the platform names such a list by its current choice (Linux), its label is what a QLabel that has it as its
// buddy says; one without a visible label gets an invisible one.

#include <QComboBox>

class Picker : public QComboBox
{
    Q_OBJECT

public:
    enum class Label { visible, invisible };

    /// `label` is the accessible name; the screen shows a visible one, and makes this its buddy.
    Picker(const QString &label, Label kind, QWidget *parent);

protected:
    /// A choice that is too long for the box ends with an ellipsis there.
    void initStyleOption(QStyleOptionComboBox *option) const override;
    void wheelEvent(QWheelEvent *event) override;
};
