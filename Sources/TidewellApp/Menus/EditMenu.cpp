#include "TidewellApp/Menus/EditMenu.h"

#include "OutputPane/OutputPane.h"
#include "TidewellApp/Menus/FindActions.h"

#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

struct Edit {
    QString label;
    QKeySequence::StandardKey key;
    /// The slot that text widgets have for it.
    const char *slot;
    bool writes;
    /// Whether there is anything to do it to.
    bool (*isPossible)(const QWidget &);
};

/// What is undone and redone in a widget; null in those of one line.
const QTextDocument *documentOf(const QWidget &widget)
{
    if (const auto *editor = qobject_cast<const QPlainTextEdit *>(&widget))
        return editor->document();
    const auto *browser = qobject_cast<const QTextEdit *>(&widget);
    return browser != nullptr ? browser->document() : nullptr;
}

bool canUndo(const QWidget &widget)
{
    const QTextDocument *document = documentOf(widget);
    return document != nullptr ? document->isUndoAvailable() : widget.property("undoAvailable").toBool();
}

bool canRedo(const QWidget &widget)
{
    const QTextDocument *document = documentOf(widget);
    return document != nullptr ? document->isRedoAvailable() : widget.property("redoAvailable").toBool();
}

bool hasSelection(const QWidget &widget)
{
    if (const auto *editor = qobject_cast<const QPlainTextEdit *>(&widget))
        return editor->textCursor().hasSelection();
    if (const auto *browser = qobject_cast<const QTextEdit *>(&widget))
        return browser->textCursor().hasSelection();
    if (const auto *pane = qobject_cast<const OutputPane *>(&widget))
        return !pane->selection().isEmpty();
    return widget.property("hasSelectedText").toBool();
}

bool always(const QWidget &)
{
    return true;
}

bool understands(const QWidget &widget, const Edit &edit)
{
    if (widget.metaObject()->indexOfMethod(QByteArray(edit.slot) + "()") < 0)
        return false;
    return !edit.writes || !widget.property("readOnly").toBool();
}

bool canNow(const QWidget *widget, const Edit &edit)
{
    return widget != nullptr && understands(*widget, edit) && edit.isPossible(*widget);
}

/// Keeps the items as they are possible in what has the focus. Main thread; belongs to the menu.
class Follower : public QObject
{
public:
    explicit Follower(QMenu *menu) : QObject(menu)
    {
        connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *focused) { follow(focused); });
        connect(menu, &QMenu::aboutToShow, this, &Follower::show);
        m_widget = QApplication::focusWidget();
    }

    void add(QAction *action, const Edit &edit)
    {
        m_items.append({action, edit});
        connect(action, &QAction::triggered, this, [this, edit] {
            if (canNow(m_widget, edit))
                QMetaObject::invokeMethod(m_widget, edit.slot);
        });
        action->setEnabled(canNow(m_widget, edit));
    }

private:
    void follow(QWidget *focused)
    {
        // Where the menu bar is in the window, it takes the focus while its menus are open by the keyboard.
        if (qobject_cast<QMenuBar *>(focused) != nullptr)
            return;
        if (m_widget != nullptr)
            disconnect(m_widget, nullptr, this, nullptr);
        m_widget = focused;
        if (const auto *field = qobject_cast<QLineEdit *>(focused)) {
            connect(field, &QLineEdit::textChanged, this, &Follower::show);
            connect(field, &QLineEdit::selectionChanged, this, &Follower::show);
        } else if (const auto *editor = qobject_cast<QPlainTextEdit *>(focused)) {
            for (const auto changed :
                 {&QPlainTextEdit::undoAvailable, &QPlainTextEdit::redoAvailable, &QPlainTextEdit::copyAvailable})
                connect(editor, changed, this, &Follower::show);
        } else if (const auto *browser = qobject_cast<QTextEdit *>(focused)) {
            connect(browser, &QTextEdit::copyAvailable, this, &Follower::show);
        } else if (const auto *pane = qobject_cast<OutputPane *>(focused)) {
            connect(pane, &OutputPane::selectionChanged, this, &Follower::show);
        }
        show();
    }

    void show()
    {
        for (const auto &[action, edit] : std::as_const(m_items))
            action->setEnabled(canNow(m_widget, edit));
    }

    QList<std::pair<QAction *, Edit>> m_items;
    QPointer<QWidget> m_widget;
};

} // namespace

QMenu *EditMenu::add(QMainWindow &window, const FindActions &findActions)
{
    const std::array edits{
        Edit{u"&Undo"_s, QKeySequence::Undo, "undo", true, canUndo},
        Edit{u"&Redo"_s, QKeySequence::Redo, "redo", true, canRedo},
        Edit{u"Cu&t"_s, QKeySequence::Cut, "cut", true, hasSelection},
        Edit{u"&Copy"_s, QKeySequence::Copy, "copy", false, hasSelection},
        Edit{u"&Paste"_s, QKeySequence::Paste, "paste", true, always},
        Edit{u"Select &All"_s, QKeySequence::SelectAll, "selectAll", false, always},
    };
    QMenu *menu = window.menuBar()->addMenu(u"&Edit"_s);
    auto *follower = new Follower(menu);
    for (const Edit &edit : edits) {
        if (edit.key == QKeySequence::Cut || edit.key == QKeySequence::SelectAll)
            menu->addSeparator();
        QAction *action = menu->addAction(edit.label);
        action->setShortcut(edit.key);
        follower->add(action, edit);
    }
    menu->addSeparator();
    menu->addActions(findActions.all());
    return menu;
}
