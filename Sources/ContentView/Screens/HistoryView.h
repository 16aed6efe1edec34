#pragma once

// The History screen: the last runs, newest first; loads a past command back into the Run screen, deletes one entry or
// all, at once and without a question. Says so while the list cannot be saved. Shows the fields of HistoryStore and
// keeps nothing of its own.

#include "ContentView/AppTab.h"
#include "ContentView/Controllers.h"

#include <QWidget>

class NoteText;
class PlainLabel;
class QPushButton;
class RowList;

class HistoryView : public QWidget
{
    Q_OBJECT

public:
    explicit HistoryView(const Controllers &controllers, QWidget *parent = nullptr);

Q_SIGNALS:
    /// The window is to show this tab; the screen may be discarded by it.
    void tabRequested(AppTab tab);

private:
    void showFields();
    void press(int row, int action);

    HistoryStore &m_history;
    RunController &m_run;
    QPushButton *m_clear;
    NoteText *m_saveError;
    PlainLabel *m_hint;
    RowList *m_list;
};
