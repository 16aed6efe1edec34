#include "Look/Rows/UnmadeRows.h"

#include "Look/PlainLabel.h"
#include "Look/Rows/RowList.h"
#include "Text/VisibleText.h"

#include <QApplication>
#include <QPushButton>

#include <utility>

namespace
{

/// The common part: something in the list without an object of its own.
class UnmadeInterface : public QAccessibleInterface
{
public:
    UnmadeInterface(RowList &list, int row) : m_list(list), m_row(row) {}

    bool isValid() const override { return m_row < m_list.count(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return m_list.window()->windowHandle(); }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override { return m_list.placeOnScreen(m_row); }

    int row() const { return m_row; }

protected:
    RowList &list() const { return m_list; }
    const RowContent &content() const { return m_list.rows()[m_row]; }
    QString rowName() const { return VisibleText::accessibleName(content().name); }

private:
    RowList &m_list;
    const int m_row;
};

/// A dot, a line of text or a button, in this order.
class UnmadePart : public UnmadeInterface, public QAccessibleActionInterface
{
public:
    UnmadePart(RowList &list, int row, int part) : UnmadeInterface(list, row), m_part(part) {}

    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    QAccessible::Role role() const override { return button() >= 0 ? QAccessible::Button : QAccessible::StaticText; }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (button() >= 0) {
            state.disabled = !content().buttons[button()].isEnabled;
            state.focusable = !state.disabled;
        }
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Description && button() >= 0)
            return content().buttons[button()].label + u' ' + rowName();
        // The words of a dot are its tool tip, which describes it, too.
        const bool isDot = line() < 0;
        if (kind != QAccessible::Name && !(kind == QAccessible::Description && isDot))
            return {};
        if (button() >= 0)
            return content().buttons[button()].label;
        if (isDot)
            return content().dot->words;
        const RowContent::Line &shown = content().lines[line()];
        return shown.origin == RowContent::Origin::own ? shown.text : PlainLabel::oneLine(shown.text);
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface && button() >= 0 ? static_cast<QAccessibleActionInterface *>(this)
                                                                     : nullptr;
    }

    QStringList actionNames() const override
    {
        return state().disabled ? QStringList() : QStringList{pressAction(), setFocusAction()};
    }

    void doAction(const QString &action) override
    {
        if (action == setFocusAction())
            list().row(row())->buttons()[button()]->setFocus(Qt::OtherFocusReason);
        if (action != pressAction())
            return;
        // Later, because whoever asks must not wait for what a press does; if it is the same row still.
        const auto press = [&list = list(), row = row(), button = button(), id = content().id] {
            if (row < list.count() && list.rows()[row].id == id)
                list.row(row)->buttons()[button]->click();
        };
        QMetaObject::invokeMethod(&list(), press, Qt::QueuedConnection);
    }

    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    int line() const { return m_part - (content().dot ? 1 : 0); }
    int button() const { return line() - static_cast<int>(content().lines.size()); }

    const int m_part;
};

class UnmadeRow : public UnmadeInterface
{
public:
    using UnmadeInterface::UnmadeInterface;

    ~UnmadeRow() override
    {
        for (const QAccessible::Id part : std::as_const(m_parts))
            QAccessible::deleteAccessibleInterface(part);
    }

    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(list().widget()); }

    int childCount() const override
    {
        return (content().dot ? 1 : 0) + static_cast<int>(content().lines.size() + content().buttons.size());
    }

    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        while (m_parts.size() <= index) {
            const int part = static_cast<int>(m_parts.size());
            m_parts.append(QAccessible::registerAccessibleInterface(new UnmadePart(list(), row(), part)));
        }
        return QAccessible::accessibleInterface(m_parts[index]);
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return static_cast<int>(m_parts.indexOf(QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child))));
    }

    QAccessible::Role role() const override { return QAccessible::Grouping; }
    QAccessible::State state() const override { return {}; }
    QString text(QAccessible::Text kind) const override { return kind == QAccessible::Name ? rowName() : QString(); }

private:
    mutable QList<QAccessible::Id> m_parts;
};

QAccessibleInterface *UnmadePart::parent() const
{
    return QAccessible::queryAccessibleInterface(list().widget())->child(row());
}

/// Tells that the row is gone, and deletes it once nobody can be in the middle of asking it.
void discard(QAccessible::Id id)
{
    QAccessibleEvent gone(QAccessible::accessibleInterface(id), QAccessible::ObjectDestroyed);
    QAccessible::updateAccessibility(&gone);
    QMetaObject::invokeMethod(qApp, [id] { QAccessible::deleteAccessibleInterface(id); }, Qt::QueuedConnection);
}

} // namespace

QAccessibleInterface *UnmadeRows::at(int index)
{
    const auto found = m_ids.constFind(index);
    if (found != m_ids.constEnd())
        return QAccessible::accessibleInterface(*found);
    auto *row = new UnmadeRow(m_list, index);
    m_ids.insert(index, QAccessible::registerAccessibleInterface(row));
    return row;
}

int UnmadeRows::indexOf(const QAccessibleInterface *row) const
{
    const auto *unmade = dynamic_cast<const UnmadeRow *>(row);
    return unmade != nullptr && m_ids.contains(unmade->row()) ? unmade->row() : -1;
}

void UnmadeRows::forget(int index)
{
    if (const QAccessible::Id id = m_ids.take(index))
        discard(id);
}

void UnmadeRows::forgetAll()
{
    for (const QAccessible::Id id : std::exchange(m_ids, {}))
        discard(id);
}
