#pragma once

// The window's root: the setup header, the tab selector, the selected screen, and what keeps the controllers fresh.
//
// While shown it repeats: ask for OrbStack's state; if OrbStack runs, list the machines, then the containers; sleep six
// seconds. Besides, the lists are read at once when OrbStack comes up, and the machines when a run ends. Nothing
// coordinates these refreshes; each store's is safe to call while an earlier one still waits.

#include "ContentView/AppTab.h"
#include "ContentView/Controllers.h"
#include "ContentView/RunActions.h"

#include <QTimer>
#include <QWidget>
#include <qcorotask.h>

#include <chrono>

class QScrollArea;
class QTabBar;

class ContentView : public QWidget
{
    Q_OBJECT

public:
    /// `pollInterval` is the sleep between two rounds; tests shorten it.
    explicit ContentView(const Controllers &controllers, QWidget *parent = nullptr,
                         std::chrono::milliseconds pollInterval = std::chrono::seconds(6));

    /// The selected tab; the first one in every new window.
    AppTab tab() const { return m_tab; }

    /// Selects a tab: the screen before it is discarded with what was typed there, the new one is built fresh.
    void setTab(AppTab tab);

    /// What the Run screen offers, for menus; as long as the view lives.
    const RunActions &runActions() const { return m_runActions; }

    /// Selects the Run tab and puts another script into the editor, which the user can undo there.
    void replaceScript(const QString &script);

    /// Asks the tools anew, once, beside the rounds.
    void refresh();

Q_SIGNALS:
    void tabChanged(AppTab tab);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *makeScreen();
    void changeTo(AppTab tab);
    void showScreen();
    void focusScreen();
    QCoro::Task<> poll(int appearance);

    const Controllers m_controllers;
    const RunActions m_runActions;
    AppTab m_tab = AppTab::run;
    QTabBar *m_selector;
    QScrollArea *m_screen;
    /// Counts showing and hiding: a polling loop ends when it finds another number than its own.
    int m_appearance = 0;
    QTimer m_sleep;
};
