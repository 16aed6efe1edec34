#pragma once

// A field for one line of text, named by its placeholder, which is readable in light and dark.

#include <QLineEdit>

class TextField : public QLineEdit
{
    Q_OBJECT

public:
    TextField(const QString &placeholder, QWidget *parent);

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyColour();
};
