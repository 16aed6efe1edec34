#include "Look/Rows/RowListAccessibility.h"

#include "Look/Rows/RowList.h"

#include <QAccessibleWidget>

using namespace Qt::StringLiterals;

namespace
{

class RowListInterface : public QAccessibleWidget
{
public:
    explicit RowListInterface(RowListContent *content) : QAccessibleWidget(content, QAccessible::List) {}

    int childCount() const override { return list().count(); }

    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= list().count())
            return nullptr;
        if (RowWidget *row = list().madeRow(index))
            return QAccessible::queryAccessibleInterface(row);
        return content().unmade().at(index);
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const auto *row = child != nullptr ? qobject_cast<const RowWidget *>(child->object()) : nullptr;
        return row != nullptr ? row->index() : content().unmade().indexOf(child);
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        const QPoint place = widget()->mapFromGlobal(QPoint(x, y));
        return widget()->rect().contains(place) ? child(list().indexAt(place.y())) : nullptr;
    }

private:
    RowListContent &content() const { return *static_cast<RowListContent *>(widget()); }
    RowList &list() const { return content().list(); }
};

QAccessibleInterface *interfaceFor(const QString &className, QObject *object)
{
    if (auto *content = qobject_cast<RowListContent *>(object); content != nullptr && className == u"RowListContent"_s)
        return new RowListInterface(content);
    if (auto *row = qobject_cast<RowWidget *>(object); row != nullptr && className == u"RowWidget"_s)
        return new QAccessibleWidget(row, QAccessible::Grouping);
    return nullptr;
}

} // namespace

void RowListAccessibility::install()
{
    QAccessible::installFactory(interfaceFor); // which keeps one of each
}
