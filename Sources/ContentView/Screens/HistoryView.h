#pragma once

// The History screen: the last runs, newest first; loads a past command back into the Run screen, deletes one entry or
// all, at once and without a question. Says so while the list cannot be saved. Shows the fields of HistoryStore and
// keeps nothing of its own.

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
    /// This command is to stand in the editor of the Run screen; this screen may be discarded by it.
    void loadRequested(const QString &command);

    /// What had the focus is about to go, and nothing here can take it.
    void focusLeft();

private:
    void showFields();
    void press(int row, int action);

    HistoryStore &m_history;
    QPushButton *m_clear;
    NoteText *m_saveError;
    PlainLabel *m_hint;
    RowList *m_list;
};
