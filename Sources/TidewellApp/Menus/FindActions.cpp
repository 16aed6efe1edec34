#include "TidewellApp/Menus/FindActions.h"

#include "ContentView/ContentView.h"
#include "Find/FindablePane.h"
#include "RunController/RunController.h"

#include <QApplication>

using namespace Qt::StringLiterals;

FindActions::FindActions(const ContentView &content, const RunController &run, QObject *parent) : QObject(parent)
{
    add(u"&Find…"_s, Qt::CTRL | Qt::Key_F, &FindablePane::find);
    add(u"Find &Next"_s, Qt::CTRL | Qt::Key_G, &FindablePane::findNext);
    add(u"Find &Previous"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_G, &FindablePane::findPrevious);
    add(u"Use S&election for Find"_s, Qt::CTRL | Qt::Key_E, &FindablePane::useSelectionForFind);
    connect(qApp, &QApplication::focusChanged, this, &FindActions::followWindow);
    connect(&content, &ContentView::tabChanged, this, &FindActions::followWindow);
    connect(&run, &RunController::revisionChanged, this, &FindActions::followWindow);
    connect(&run, &RunController::transcriptCleared, this, &FindActions::followWindow);
    followWindow();
}

template <typename Slot>
void FindActions::add(const QString &text, const QKeySequence &shortcut, Slot slot)
{
    auto *action = new QAction(text, this);
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, [slot] {
        if (FindablePane *const pane = FindablePane::inFrontWindow())
            (pane->*slot)();
    });
    m_actions.append(action);
}

void FindActions::followWindow()
{
    const FindablePane *const pane = FindablePane::inFrontWindow();
    for (QAction *action : m_actions)
        action->setEnabled(pane != nullptr && pane->hasText());
}
