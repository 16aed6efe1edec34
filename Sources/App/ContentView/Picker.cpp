#include "ContentView/Picker.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QWheelEvent>

namespace
{

/// What Qt tells of a combo box, with the label as the name and the choice as the value.
class AccessiblePicker : public QAccessibleWidget
{
public:
    explicit AccessiblePicker(Picker *picker) : QAccessibleWidget(picker, QAccessible::ComboBox) {}

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? picker()->currentText() : QAccessibleWidget::text(kind);
    }

    int childCount() const override { return 1; }

    QAccessibleInterface *child(int index) const override
    {
        return index == 0 ? QAccessible::queryAccessibleInterface(picker()->view()) : nullptr;
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        return picker()->view()->isVisible() && rect().contains(x, y) ? child(0) : nullptr;
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child->object() == picker()->view() ? 0 : -1;
    }

    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }

    void doAction(const QString &name) override
    {
        if (name != showMenuAction() && name != pressAction())
            return;
        if (picker()->view()->isVisible())
            picker()->hidePopup();
        else
            picker()->showPopup();
    }

    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    Picker *picker() const { return static_cast<Picker *>(widget()); }
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    auto *picker = qobject_cast<Picker *>(object);
    return picker == nullptr ? nullptr : new AccessiblePicker(picker);
}

} // namespace

Picker::Picker(const QString &label, QWidget *parent) : QComboBox(parent)
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    Q_UNUSED(isInstalled)
    setAccessibleName(label);
}

void Picker::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
