#pragma once

// A pop-up list of choices. Its accessible name is its label on every system (Qt alone would give the current choice on
// Linux, so that a list without a visible label had no name), and scrolling the screen over it chooses nothing.

#include <QComboBox>

class Picker : public QComboBox
{
    Q_OBJECT

public:
    /// `label` is the accessible name.
    explicit Picker(const QString &label, QWidget *parent = nullptr);

protected:
    void wheelEvent(QWheelEvent *event) override;
};
