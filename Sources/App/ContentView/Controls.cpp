#include "ContentView/Controls.h"

using namespace Qt::StringLiterals;

QPushButton *Controls::button(const QString &label, const QString &description, QWidget *parent)
{
    auto *button = new QPushButton(label, parent);
    // Return belongs to the text field or the alert that has the focus.
    button->setAutoDefault(false);
    button->setAccessibleDescription(description);
    return button;
}

QProgressBar *Controls::indeterminateBar(QWidget *parent)
{
    auto *bar = new QProgressBar(parent);
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setAccessibleName(u"In progress"_s);
#ifndef Q_OS_MACOS
    bar->setFixedHeight(6);
#endif
    return bar;
}
