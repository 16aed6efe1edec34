#pragma once

// A window walked through by Tab (and Control-Tab out of the script), as somebody does who does not see it.

#include "ContentView/Screens/Run/ScriptEditor.h"
#include "ContentView/TabSelector.h"
#include "OutputPane/OutputPane.h"
#include "Screens/ByName.h"
#include "Screens/Places.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSet>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <tuple>

namespace KeyboardWalk
{

inline QAccessibleInterface *accessible(const QWidget *widget)
{
    return QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
}

inline std::string textOf(const QWidget *widget)
{
    return ByName::nameOf(widget).toStdString() + " (" + ByName::descriptionOf(widget).toStdString() + ")";
}

/// The role that a control of this kind has.
inline QAccessible::Role roleFor(const QWidget *widget)
{
    if (qobject_cast<const QCheckBox *>(widget) != nullptr)
        return QAccessible::CheckBox;
    if (qobject_cast<const QAbstractButton *>(widget) != nullptr)
        return QAccessible::Button;
    if (qobject_cast<const QComboBox *>(widget) != nullptr)
        return QAccessible::ComboBox;
    if (qobject_cast<const TabStop *>(widget) != nullptr)
        return QAccessible::PageTab;
    if (qobject_cast<const QLineEdit *>(widget) != nullptr || qobject_cast<const QPlainTextEdit *>(widget) != nullptr ||
        qobject_cast<const OutputPane *>(widget) != nullptr)
        return QAccessible::EditableText;
    return QAccessible::NoRole;
}

/// The innermost group around a control, or its window.
inline const QWidget *groupOf(const QWidget *widget)
{
    const QWidget *group = widget->parentWidget();
    while (!group->isWindow() && accessible(group)->role() != QAccessible::Grouping &&
           accessible(group)->role() != QAccessible::PageTabList)
        group = group->parentWidget();
    return group;
}

/// Where the focus comes by pressing the key again and again, until it is where it was before.
inline QList<QWidget *> stops(const QWidget &window, Qt::Key key)
{
    QList<QWidget *> visited;
    for (QWidget *widget = window.focusWidget(); widget != nullptr && !visited.contains(widget);
         widget = window.focusWidget()) {
        visited.append(widget);
        // In the script a Tab is a tab.
        const Qt::KeyboardModifiers goingOn =
            qobject_cast<ScriptEditor *>(widget) != nullptr ? Qt::ControlModifier : Qt::NoModifier;
        QTest::keyClick(widget, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : goingOn);
    }
    EXPECT_EQ(window.focusWidget(), visited.value(0)) << "Tab does not come back";
    return visited;
}

/// Whether somebody who reads comes to `first` before `second`: it is above or, in the same line, to the left.
inline bool isReadBefore(const QRect &first, const QRect &second)
{
    return second.top() > first.bottom() || (second.bottom() >= first.top() && second.left() > first.right());
}

/// Expects that each control of the window is reached and left by Tab and by Shift-Tab, in the order of reading, and
/// has a name, a role, and nothing in its group with the same name and description.
inline void expectGoodFor(QWidget &window)
{
    QList<QWidget *> forward = stops(window, Qt::Key_Tab);
    QList<QWidget *> backward = stops(window, Qt::Key_Backtab);
    ASSERT_FALSE(forward.isEmpty());
    std::reverse(backward.begin() + 1, backward.end());
    EXPECT_EQ(forward, backward);

    QSet<QWidget *> reachable;
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        if (widget->window() == &window && widget->isVisible() && widget->isEnabled() &&
            (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->focusProxy() == nullptr)
            reachable.insert(widget);
    }
    EXPECT_EQ(QSet<QWidget *>(forward.cbegin(), forward.cend()), reachable);

    const auto first = std::min_element(forward.begin(), forward.end(), [&](const QWidget *one, const QWidget *other) {
        return isReadBefore(Places::in(window, one), Places::in(window, other));
    });
    std::rotate(forward.begin(), first, forward.end());
    for (qsizetype index = 1; index < forward.size(); ++index) {
        EXPECT_TRUE(isReadBefore(Places::in(window, forward[index - 1]), Places::in(window, forward[index])))
            << textOf(forward[index - 1]) << " before " << textOf(forward[index]);
    }

    std::set<std::tuple<const QWidget *, QString, QString>> known;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (widget->window() != &window || !widget->isVisible() || roleFor(widget) == QAccessible::NoRole ||
            widget->parentWidget()->inherits("QAbstractScrollArea") || widget->inherits("QTabBar"))
            continue;
        const QString name = ByName::nameOf(widget);
        EXPECT_EQ(accessible(widget)->role(), roleFor(widget)) << textOf(widget);
        EXPECT_FALSE(name.isEmpty()) << widget->metaObject()->className();
        const auto key = std::tuple(groupOf(widget), name, ByName::descriptionOf(widget));
        EXPECT_TRUE(known.insert(key).second) << textOf(widget);
    }
}

} // namespace KeyboardWalk
