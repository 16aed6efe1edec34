#include "Look/Accessibility/PickerAccessibility.h"

#include "Look/Picker.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>

#ifndef Q_OS_MACOS

using namespace Qt::StringLiterals;

namespace
{

class PickerInterface : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    explicit PickerInterface(Picker *picker) : QAccessibleWidget(picker, QAccessible::ComboBox) {}

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = picker().view()->isVisible();
        state.readOnly = true;
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        // The label is told as a relation.
        const bool isChoice = kind == QAccessible::Name || kind == QAccessible::Value;
        return isChoice ? picker().currentText() : QAccessibleWidget::text(kind);
    }

    int childCount() const override { return 1; }
    QAccessibleInterface *child(int index) const override
    {
        return index == 0 ? QAccessible::queryAccessibleInterface(picker().view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child != nullptr && child->object() == picker().view() ? 0 : -1;
    }

    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
    void doAction(const QString &name) override
    {
        if (name != showMenuAction() && name != pressAction())
            return;
        if (picker().view()->isVisible())
            picker().hidePopup();
        else
            picker().showPopup();
    }

    QString text(int start, int end) const override
    {
        const QString choice = picker().currentText();
        return choice.mid(start, (end < 0 ? static_cast<int>(choice.size()) : end) - start);
    }
    int characterCount() const override { return static_cast<int>(picker().currentText().size()); }
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    // A screen reader speaks a text that changes when all of it is selected.
    int selectionCount() const override { return 1; }
    void selection(int, int *start, int *end) const override
    {
        *start = 0;
        *end = characterCount();
    }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    QRect characterRect(int) const override { return {}; }
    int offsetAtPoint(const QPoint &) const override { return -1; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int *start, int *end) const override
    {
        *start = 0;
        *end = characterCount();
        return {};
    }

private:
    Picker &picker() const { return *static_cast<Picker *>(widget()); }
};

QAccessibleInterface *interfaceFor(const QString &className, QObject *object)
{
    auto *picker = qobject_cast<Picker *>(object);
    return picker != nullptr && className == u"Picker"_s ? new PickerInterface(picker) : nullptr;
}

} // namespace

void PickerAccessibility::install()
{
    QAccessible::installFactory(interfaceFor); // which keeps one of each
}

void PickerAccessibility::announceChoice(Picker &picker)
{
    if (!QAccessible::isActive() || !picker.hasFocus())
        return;
    QAccessibleTextInsertEvent changed(&picker, 0, picker.currentText());
    QAccessible::updateAccessibility(&changed);
}

#else

void PickerAccessibility::install() {}
void PickerAccessibility::announceChoice(Picker &) {}

#endif
