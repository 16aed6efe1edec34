#include "ContentView/TabSelectorAccessibility.h"

#include "ContentView/TabSelector.h"

#include <QAccessibleWidget>

using namespace Qt::StringLiterals;

namespace
{

class TabListInterface : public QAccessibleWidget
{
public:
    explicit TabListInterface(TabSelector *selector) : QAccessibleWidget(selector, QAccessible::PageTabList) {}

    int childCount() const override { return static_cast<int>(selector().stops().size()); }

    QAccessibleInterface *child(int index) const override
    {
        return QAccessible::queryAccessibleInterface(selector().stops().value(index));
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const auto *stop = child != nullptr ? qobject_cast<const TabStop *>(child->object()) : nullptr;
        return stop != nullptr ? stop->index() : -1;
    }

private:
    const TabSelector &selector() const { return *static_cast<TabSelector *>(widget()); }
};

class TabInterface : public QAccessibleWidget
{
public:
    explicit TabInterface(TabStop *stop) : QAccessibleWidget(stop, QAccessible::PageTab) {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = selector().currentIndex() == stop().index();
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? selector().tabText(stop().index()) : QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString &name) override
    {
        if (name == pressAction())
            selector().setCurrentIndex(stop().index());
    }

private:
    TabStop &stop() const { return *static_cast<TabStop *>(widget()); }
    TabSelector &selector() const { return stop().selector(); }
};

QAccessibleInterface *interfaceFor(const QString &className, QObject *object)
{
    if (auto *selector = qobject_cast<TabSelector *>(object); selector != nullptr && className == u"TabSelector"_s)
        return new TabListInterface(selector);
    if (auto *stop = qobject_cast<TabStop *>(object); stop != nullptr && className == u"TabStop"_s)
        return new TabInterface(stop);
    return nullptr;
}

} // namespace

void TabSelectorAccessibility::install()
{
    QAccessible::installFactory(interfaceFor); // which keeps one of each
}
