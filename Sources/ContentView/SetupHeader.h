#pragma once

// The strip at the top of the window: whether OrbStack is installed and running, and what can be done about it. Holds
// no state; all it shows is derived from the controller's fields.

#include <QWidget>

class LogBox;
class NoteText;
class PlainLabel;
class QPushButton;
class SetupController;
class StatusDot;

class SetupHeader : public QWidget
{
    Q_OBJECT

public:
    /// `setup` must outlive it.
    explicit SetupHeader(SetupController &setup, QWidget *parent = nullptr);

private:
    QLayout *makeStatusRow();
    QLayout *makeProgressRow();
    void showFields();
    void showButtons();
    void showExplanation();
    void showNote();
    void showLog();
    void keepFocus(QWidget *focused);

    SetupController &m_setup;
    StatusDot *m_dot = nullptr;
    PlainLabel *m_title = nullptr;
    QPushButton *m_install = nullptr;
    QPushButton *m_get = nullptr;
    QPushButton *m_start = nullptr;
    QPushButton *m_stop = nullptr;
    PlainLabel *m_explanation = nullptr;
    QWidget *m_progress = nullptr;
    QPushButton *m_cancel = nullptr;
    /// These two are made when they first have something to show: that is rare, and the first paint need not wait.
    NoteText *m_note = nullptr;
    LogBox *m_log = nullptr;
};
