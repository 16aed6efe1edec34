#pragma once

// The screen on which the user writes a script, chooses where it runs, runs and stops it, and reads its output.
//
// The script and all about the run are the controllers'. What is chosen here (machine, disposable mode, folder, time
// limit, packages) lives as long as the screen.

#include "ContentView/Controllers.h"
#include "Look/ClickGuard.h"
#include "MachineStore/Machine.h"

#include <QWidget>

class DisposableToggle;
class FolderPicker;
class MachinePicker;
class Picker;
class PlainLabel;
class QCheckBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
struct RunActions;
class RunStatus;
class ScriptEditor;

class RunView : public QWidget
{
    Q_OBJECT

public:
    /// The focus proxy is the script editor. `actions` get this screen's buttons and must outlive it.
    RunView(const Controllers &controllers, const RunActions &actions, QWidget *parent = nullptr);

    /// The chosen machine, if the store still lists it.
    const Machine *selectedMachine() const;

    /// Puts another script into the editor as one step that can be undone.
    void replaceScript(const QString &script);

    /// OrbStack runs, there is a script, and there is a machine to run it in or disposable mode is on.
    bool canRun() const;

protected:
    /// Of what comes to Run and Stop.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLayout *makeMachineSection();
    QLayout *makeFolderSection();
    QLayout *makePackageRow();
    QLayout *makeRunRow(const RunActions &actions);
    void followControllers();

    /// Chooses the first running machine, or else the first, when the chosen one is not listed.
    void pickDefault();
    void showMachines();
    void showFields();
    void start();
    void installPackages();

    const Controllers m_controllers;
    /// Name of the chosen machine; empty when none.
    QString m_selected;
    ScriptEditor *m_editor = nullptr;
    QLabel *m_machineLabel = nullptr;
    MachinePicker *m_machine = nullptr;
    DisposableToggle *m_disposable = nullptr;
    Picker *m_distribution = nullptr;
    PlainLabel *m_disposableCaption = nullptr;
    FolderPicker *m_folder = nullptr;
    PlainLabel *m_folderWarning = nullptr;
    QCheckBox *m_timeLimit = nullptr;
    QLineEdit *m_packages = nullptr;
    QPushButton *m_install = nullptr;
    QPushButton *m_run = nullptr;
    RunStatus *m_status = nullptr;
    /// Run and Stop lie in one place, so that the second of two quick clicks would undo, or do again, what the first
    /// did.
    ClickGuard m_guard;
    PlainLabel *m_startHint = nullptr;
};
