#include "ContentView/Alert.h"

#include "ContentView/Typography.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace
{

constexpr int textWidth = 420;

/// Lets the texts begin where the box's margin ends, not where they would beside an icon.
void alignToMargin(const QMessageBox &alert)
{
#ifndef Q_OS_MACOS
    auto *grid = qobject_cast<QGridLayout *>(alert.layout());
    QLayoutItem *room = grid != nullptr ? grid->itemAtPosition(0, 0) : nullptr;
    if (room == nullptr || room->spacerItem() == nullptr)
        return;
    room->spacerItem()->changeSize(0, 0, QSizePolicy::Fixed, QSizePolicy::Fixed);
    grid->setHorizontalSpacing(0);
#else
    Q_UNUSED(alert)
#endif
}

} // namespace

QMessageBox *Alert::open(QWidget *parent, const QString &title, const QString &message, const QString &acceptLabel,
                         const QString &cancelLabel, const std::function<void()> &accepted, Kind kind)
{
    auto *alert = new QMessageBox(parent);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setWindowModality(Qt::WindowModal);
    alert->setTextFormat(Qt::PlainText);
    alert->setText(title);
    alert->setInformativeText(message);
    const QAbstractButton *accept = alert->addButton(
        acceptLabel, kind == Kind::destructive ? QMessageBox::DestructiveRole : QMessageBox::AcceptRole);
    QPushButton *cancel = alert->addButton(cancelLabel, QMessageBox::RejectRole);
    alert->setDefaultButton(cancel);
    alert->setEscapeButton(cancel);
    // Left alone, the box breaks its texts into a narrow column.
    for (QLabel *label : alert->findChildren<QLabel *>()) {
        if (label->text().isEmpty())
            continue;
        label->setMinimumWidth(textWidth);
        label->setIndent(0);
        label->setFont(label->text() == title ? Typography::headline() : Typography::body());
    }
    alignToMargin(*alert);
    const QPointer<QWidget> focused = parent->window()->focusWidget();
    QObject::connect(alert, &QMessageBox::finished, parent, [alert, accept, accepted, focused] {
        if (focused)
            focused->setFocus();
        if (alert->clickedButton() == accept)
            accepted();
    });
    alert->open();
    return alert;
}
