#include "TidewellApp/EditMenu.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include <array>

using namespace Qt::StringLiterals;

namespace
{

struct Edit {
    QString label;
    QKeySequence::StandardKey key;
    /// The slot that text widgets have for it.
    const char *slot;
    bool writes;
};

bool understands(const QWidget *widget, const Edit &edit)
{
    if (widget->metaObject()->indexOfMethod(QByteArray(edit.slot) + "()") < 0)
        return false;
    return !edit.writes || !widget->property("readOnly").toBool();
}

void follow(QAction *action, const Edit &edit)
{
    QObject::connect(action, &QAction::triggered, action, [edit] {
        QWidget *focused = QApplication::focusWidget();
        if (focused != nullptr && understands(focused, edit))
            QMetaObject::invokeMethod(focused, edit.slot);
    });
    const auto follows = [action, edit](const QWidget *focused) {
        action->setEnabled(focused != nullptr && understands(focused, edit));
    };
    QObject::connect(qApp, &QApplication::focusChanged, action,
                     [follows](QWidget *, const QWidget *focused) { follows(focused); });
    follows(QApplication::focusWidget());
}

} // namespace

QMenu *EditMenu::add(QMainWindow &window)
{
    const std::array edits{
        Edit{u"&Undo"_s, QKeySequence::Undo, "undo", true},
        Edit{u"&Redo"_s, QKeySequence::Redo, "redo", true},
        Edit{u"Cu&t"_s, QKeySequence::Cut, "cut", true},
        Edit{u"&Copy"_s, QKeySequence::Copy, "copy", false},
        Edit{u"&Paste"_s, QKeySequence::Paste, "paste", true},
        Edit{u"Select &All"_s, QKeySequence::SelectAll, "selectAll", false},
    };
    QMenu *menu = window.menuBar()->addMenu(u"&Edit"_s);
    for (const Edit &edit : edits) {
        if (edit.key == QKeySequence::Cut || edit.key == QKeySequence::SelectAll)
            menu->addSeparator();
        QAction *action = menu->addAction(edit.label);
        action->setShortcut(edit.key);
        follow(action, edit);
    }
    return menu;
}
