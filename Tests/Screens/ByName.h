#pragma once

// Finding and using what a window shows as a user does: by accessible name, and only what can be seen.

#include "Support/Printing.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

namespace ByName
{

inline QString nameOf(const QWidget *widget)
{
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
    if (accessible == nullptr)
        return {};
    // A list of choices is named by its label; its own name, on Linux, is the choice.
    const auto labels = accessible->relations(QAccessible::Label);
    if (accessible->role() == QAccessible::ComboBox && !labels.isEmpty())
        return labels.first().first->text(QAccessible::Name);
    return accessible->text(QAccessible::Name);
}

inline QString descriptionOf(const QWidget *widget)
{
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
    return accessible == nullptr ? QString() : accessible->text(QAccessible::Description);
}

/// All visible widgets of this type and name, in the order of their creation.
template <typename Widget>
QList<Widget *> findAll(const QWidget &root, const QString &name)
{
    QList<Widget *> found;
    for (Widget *widget : root.findChildren<Widget *>()) {
        if (widget->isVisibleTo(&root) && nameOf(widget) == name)
            found.append(widget);
    }
    return found;
}

/// The first visible widget of this type and name, null when there is none; where a description is given it must match.
template <typename Widget>
Widget *find(const QWidget &root, const QString &name, const QString &description = {})
{
    for (Widget *widget : findAll<Widget>(root, name)) {
        if (description.isEmpty() || descriptionOf(widget) == description)
            return widget;
    }
    return nullptr;
}

/// True when a widget of this name can be seen.
inline bool shows(const QWidget &root, const QString &name)
{
    return find<QWidget>(root, name) != nullptr;
}

/// True when there is such a button and it can be pressed.
inline bool isOffered(const QWidget &root, const QString &name, const QString &description = {})
{
    const auto *button = find<QAbstractButton>(root, name, description);
    return button != nullptr && button->isEnabled();
}

/// Clicks a button; a failed expectation when there is none or it is disabled.
inline void press(const QWidget &root, const QString &name, const QString &description = {})
{
    auto *button = find<QAbstractButton>(root, name, description);
    EXPECT_NE(button, nullptr) << "no button " << name.toStdString();
    if (button == nullptr)
        return;
    EXPECT_TRUE(button->isEnabled()) << "disabled: " << name.toStdString();
    QTest::mouseClick(button, Qt::LeftButton);
}

} // namespace ByName
