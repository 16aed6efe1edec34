#include "Look/Alert.h"

#include "Look/Typography.h"

#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace
{

constexpr int textWidth = 420;

/// Drawn by the toolkit on every system: it hands plain message boxes alone to the system, whose own on macOS knows no
/// Escape where Return presses the same button, and cannot be clicked in some versions.
class AlertBox : public QMessageBox
{
    Q_OBJECT

public:
    using QMessageBox::QMessageBox;
};

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
    grid->setColumnStretch(1, 1);
#else
    Q_UNUSED(alert)
#endif
}

QMessageBox *make(QWidget *parent, const QString &title, const QString &message)
{
    // Over a hidden window nothing would be seen of it: then it stands by itself.
    const bool isSeen = parent->window()->isVisible();
    auto *alert = new AlertBox(isSeen ? parent : nullptr);
    if (!isSeen)
        QObject::connect(parent, &QObject::destroyed, alert, [alert] { delete alert; });
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setWindowModality(Qt::WindowModal);
    alert->setTextFormat(Qt::PlainText);
    alert->setText(title);
    alert->setInformativeText(message);
    return alert;
}

/// Return presses `usual`, Escape and closing press `cancel`.
void show(QMessageBox *alert, const QWidget *over, QPushButton *usual, QPushButton *cancel,
          const std::function<void()> &finished)
{
    alert->setDefaultButton(usual);
    alert->setEscapeButton(cancel);
    const QString title = alert->text();
    for (QLabel *label : alert->findChildren<QLabel *>()) {
        if (label->text().isEmpty())
            continue;
        label->setFont(label->text() == title ? Typography::headline() : Typography::body());
        label->setIndent(0);
        // Left alone, the box breaks its texts into a narrow column. But it decides by the width that a title asks for
        // whether to break it at all, so a long one must ask for its own.
        if (label->text() != title || label->fontMetrics().horizontalAdvance(title) <= textWidth)
            label->setMinimumWidth(textWidth);
    }
    alignToMargin(*alert);
    const QPointer<QWidget> focused = over->window()->focusWidget();
    QObject::connect(alert, &QMessageBox::finished, alert, [focused, finished] {
        if (focused)
            focused->setFocus();
        finished();
    });
    alert->open();
}

} // namespace

QMessageBox *Alert::open(QWidget *parent, const QString &title, const QString &message, const QString &acceptLabel,
                         const QString &cancelLabel, const std::function<void()> &accepted, Kind kind)
{
    QMessageBox *alert = make(parent, title, message);
    const bool isOrdinary = kind == Kind::ordinary;
    QPushButton *accept =
        alert->addButton(acceptLabel, isOrdinary ? QMessageBox::AcceptRole : QMessageBox::DestructiveRole);
    QPushButton *cancel = alert->addButton(cancelLabel, QMessageBox::RejectRole);
    show(alert, parent, isOrdinary ? accept : cancel, cancel, [alert, accept, accepted] {
        if (alert->clickedButton() == accept)
            accepted();
    });
    return alert;
}

QMessageBox *Alert::tell(QWidget *parent, const QString &title, const QString &message)
{
    QMessageBox *alert = make(parent, title, message);
    QPushButton *okay = alert->addButton(u"OK"_s, QMessageBox::AcceptRole);
    show(alert, parent, okay, okay, [] {});
    return alert;
}

#include "Alert.moc"
