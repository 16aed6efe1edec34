#pragma once

// The Containers screen: lists Docker's containers, starts, stops, removes them, shows their logs, and runs new ones.
// Shows the fields of ContainerStore and SetupController; its own state is the three texts of the form.

#include "ContentView/Controllers.h"

#include <QPointer>
#include <QWidget>

class ContainerLogSheet;
class NoteText;
class PlainLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class RowList;

class ContainersView : public QWidget
{
    Q_OBJECT

public:
    explicit ContainersView(const Controllers &controllers, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QLayout *makeHeader();
    QWidget *makeForm();
    QLineEdit *makeField(const QString &placeholder, QWidget *form);
    void showFields();
    void showWhetherToRun();
    void showRows();
    void showLogSheet();
    void press(int row, int action);

    ContainerStore &m_containers;
    SetupController &m_setup;
    QLineEdit *m_image = nullptr;
    QLineEdit *m_ports = nullptr;
    QLineEdit *m_name = nullptr;
    QPushButton *m_run = nullptr;
    QProgressBar *m_progress = nullptr;
    NoteText *m_message = nullptr;
    NoteText *m_error = nullptr;
    PlainLabel *m_hint = nullptr;
    RowList *m_list = nullptr;
    QPointer<ContainerLogSheet> m_sheet;
};
