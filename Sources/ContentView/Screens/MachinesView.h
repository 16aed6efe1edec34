#pragma once

// The Machines screen: creates machines, lists them, starts, stops and deletes them. Shows the fields of MachineStore
// and SetupController and reads nothing by itself: every operation of the store ends with a refresh of its own.

#include "ContentView/Controllers.h"

#include <QPointer>
#include <QWidget>

class LogBox;
class NoteText;
class PlainLabel;
class Picker;
class QLineEdit;
class QMessageBox;
class QProgressBar;
class QPushButton;
class RowList;

class MachinesView : public QWidget
{
    Q_OBJECT

public:
    explicit MachinesView(const Controllers &controllers, QWidget *parent = nullptr);

private:
    QWidget *makeCreationBox();
    void showFields();
    void showWhetherToCreate();
    void showRows();
    void announceOutcome();
    void create();
    void press(int row, int action);
    void confirmDeletion(const QString &machine);
    QString typedName() const;
    bool isOrbStackRunning() const;

    MachineStore &m_machines;
    SetupController &m_setup;
    Picker *m_distro = nullptr;
    QLineEdit *m_name = nullptr;
    QPushButton *m_create = nullptr;
    QProgressBar *m_progress = nullptr;
    LogBox *m_log = nullptr;
    NoteText *m_error = nullptr;
    PlainLabel *m_hint = nullptr;
    RowList *m_list = nullptr;
    QPointer<QMessageBox> m_question;
};
