#include "ContentView/Screens/Run/RunView.h"

#include "ContentView/RunActions.h"
#include "ContentView/Screens/Run/DisposableToggle.h"
#include "ContentView/Screens/Run/FolderPicker.h"
#include "ContentView/Screens/Run/MachinePicker.h"
#include "ContentView/Screens/Run/OutputSection.h"
#include "ContentView/Screens/Run/RunStatus.h"
#include "ContentView/Screens/Run/ScriptEditor.h"
#include "ContentView/Screens/TrimmedText.h"
#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/Picker.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "SetupController/SetupController.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

constexpr int sectionSpacing = 12;
constexpr int captionSpacing = 4;
constexpr int controlSpacing = 12;

PlainLabel *caption(const QString &text, ColourOfPalette colour, QWidget *parent)
{
    return new PlainLabel(text, Typography::caption(), colour, PlainLabel::Fit::wrap, parent);
}

} // namespace

RunView::RunView(const Controllers &controllers, const RunActions &actions, QWidget *parent)
    : QWidget(parent),
      m_controllers(controllers)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(sectionSpacing);
    m_editor = new ScriptEditor(controllers.run, this);
    setFocusProxy(m_editor);
    layout->addWidget(m_editor, 1);
    layout->addLayout(makeMachineSection());
    layout->addLayout(makeFolderSection());
    layout->addLayout(makePackageRow());
    layout->addLayout(makeRunRow(actions));

    layout->addWidget(new OutputSection(controllers.run, actions, this), 2);

    followControllers();
}

const Machine *RunView::selectedMachine() const
{
    const QList<Machine> &machines = m_controllers.machines.machines();
    const auto found = std::find_if(machines.cbegin(), machines.cend(),
                                    [this](const Machine &machine) { return machine.name == m_selected; });
    return found == machines.cend() ? nullptr : &*found;
}

void RunView::replaceScript(const QString &script)
{
    m_editor->replaceText(script);
}

bool RunView::canRun() const
{
    return m_controllers.setup.state() == OrbState::running && m_controllers.setup.macSupported() &&
           !TrimmedText::withoutSpacesAndLineBreaks(m_controllers.run.script()).isEmpty() &&
           (m_disposable->isChecked() || selectedMachine() != nullptr);
}

QLayout *RunView::makeMachineSection()
{
    auto *labelled = new QWidget(this);
    labelled->setMaximumWidth(300);
    m_machineLabel =
        new PlainLabel(u"Machine"_s, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd, labelled);
    m_machine = new MachinePicker(labelled);
    m_machineLabel->setBuddy(m_machine);
    auto *labelledRow = new QHBoxLayout(labelled);
    labelledRow->setContentsMargins(0, 0, 0, 0);
    labelledRow->setSpacing(8);
    labelledRow->addWidget(m_machineLabel);
    labelledRow->addWidget(m_machine, 1);

    m_disposable = new DisposableToggle(this);
    m_distribution = new Picker(u"Distribution"_s, Picker::Label::invisible, this);
    m_distribution->setFixedWidth(100);
    for (const Distro distro : allDistros)
        m_distribution->addItem(rawValue(distro));
    m_disposableCaption = caption(u"Each run creates a fresh machine, runs in it, then deletes it. Nothing persists."_s,
                                  Colours::secondary, this);

    connect(m_machine, &MachinePicker::chosen, this, [this](const QString &name) {
        m_selected = name;
        showFields();
    });
    connect(m_disposable, &QCheckBox::toggled, this, &RunView::showFields);

    auto *row = new QHBoxLayout;
    row->setSpacing(controlSpacing);
    row->addWidget(labelled, Controls::mostOfTheRow);
    row->addWidget(m_disposable);
    row->addWidget(m_distribution);
    row->addStretch(1);
    auto *section = new QVBoxLayout;
    section->setSpacing(captionSpacing);
    section->addLayout(row);
    section->addWidget(m_disposableCaption);
    return section;
}

QLayout *RunView::makeFolderSection()
{
    m_folder = new FolderPicker(this);
    m_timeLimit = new QCheckBox(u"10 minute time limit"_s, this);
    m_timeLimit->setChecked(true);
    m_folderWarning = caption(u"Warning: a script can change or delete files in a shared folder. The command runs with "
                              "that folder as its working directory."_s,
                              Colours::orange, this);
    connect(m_folder, &FolderPicker::folderChanged, this, &RunView::showFields);

    auto *row = new QHBoxLayout;
    row->setSpacing(controlSpacing);
    row->addWidget(m_folder);
    row->addWidget(m_timeLimit);
    row->addStretch();
    auto *section = new QVBoxLayout;
    section->setSpacing(captionSpacing);
    section->addLayout(row);
    section->addWidget(m_folderWarning);
    return section;
}

QLayout *RunView::makePackageRow()
{
    m_packages = Controls::textField(u"Packages, e.g. git curl"_s, this);
    m_packages->setMaximumWidth(240);
    m_install = Controls::button(u"Install packages"_s, {}, this);
    connect(m_packages, &QLineEdit::textChanged, this, &RunView::showFields);
    connect(m_packages, &QLineEdit::returnPressed, m_install, &QPushButton::click);
    connect(m_install, &QPushButton::clicked, this, &RunView::installPackages);

    auto *row = new QHBoxLayout;
    row->setSpacing(controlSpacing);
    row->addWidget(m_packages, Controls::mostOfTheRow);
    row->addWidget(m_install);
    row->addStretch(1);
    return row;
}

QLayout *RunView::makeRunRow(const RunActions &actions)
{
    m_run = Controls::button(u"Run"_s, {}, this);
    m_status = new RunStatus(m_controllers.run, this);
    actions.run->setButton(m_run);
    actions.stop->setButton(m_status->stopButton());
    m_startHint = caption(u"Start OrbStack to run commands."_s, Colours::secondary, this);
    connect(m_run, &QPushButton::clicked, this, &RunView::start);
    for (QAbstractButton *button : std::initializer_list<QAbstractButton *>{m_run, m_status->stopButton()})
        button->installEventFilter(this);

    auto *row = new QHBoxLayout;
    row->setSpacing(controlSpacing);
    row->addWidget(m_run);
    row->addWidget(m_status);
    row->addWidget(m_startHint, 1, Qt::AlignVCenter);
    row->addStretch();
    return row;
}

void RunView::followControllers()
{
    connect(&m_controllers.setup, &SetupController::stateChanged, this, &RunView::showFields);
    connect(&m_controllers.run, &RunController::scriptChanged, this, &RunView::showFields);
    connect(&m_controllers.run, &RunController::isRunningChanged, this, &RunView::showFields);
    connect(&m_controllers.machines, &MachineStore::machinesChanged, this, &RunView::showMachines);
    showMachines();
}

void RunView::pickDefault()
{
    if (selectedMachine() != nullptr)
        return;
    const QList<Machine> &machines = m_controllers.machines.machines();
    auto choice =
        std::find_if(machines.cbegin(), machines.cend(), [](const Machine &each) { return each.state == u"running"; });
    if (choice == machines.cend())
        choice = machines.cbegin();
    m_selected = machines.isEmpty() ? QString() : choice->name;
}

void RunView::showMachines()
{
    pickDefault();
    m_machine->showMachines(m_controllers.machines.machines(), m_selected);
    showFields();
}

void RunView::showFields()
{
    const bool isDisposable = m_disposable->isChecked();
    const bool orbRuns = m_controllers.setup.state() == OrbState::running;
    const bool isRunning = m_controllers.run.isRunning();
    const QWidget *focused = window()->focusWidget();
    const bool handsOnFocus = focused == m_run || focused == m_status->focusProxy();
    const bool canInstall = !isRunning && orbRuns && !isDisposable && selectedMachine() != nullptr &&
                            !TrimmedText::withoutSpacesAndTabs(m_packages->text()).isEmpty();

    m_machine->setEnabled(!isDisposable);
    m_machineLabel->setEnabled(!isDisposable);
    m_distribution->setVisible(isDisposable);
    m_disposableCaption->setVisible(isDisposable);
    m_folderWarning->setVisible(m_folder->folder().has_value());
    // Not on to Run or Stop, which the next press would then be for.
    if (!canInstall && focused == m_install)
        m_packages->setFocus(Qt::OtherFocusReason);
    m_install->setEnabled(canInstall);
    m_run->setEnabled(canRun());
    if (m_run->isHidden() != isRunning)
        m_guard.placeChanged();
    m_run->setVisible(!isRunning);
    m_status->setVisible(isRunning);
    m_startHint->setVisible(!orbRuns);
    // Run and Stop take each other's place, also for the keyboard.
    if (handsOnFocus)
        (isRunning ? static_cast<QWidget *>(m_status) : m_run)->setFocus();
}

bool RunView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
        const QPoint place = static_cast<QMouseEvent *>(event)->globalPosition().toPoint();
        if (m_guard.refuses(place))
            return true;
        m_guard.setPlace(place);
    }
    return QWidget::eventFilter(watched, event);
}

void RunView::start()
{
    const bool isDisposable = m_disposable->isChecked();
    const Machine *machine = selectedMachine();
    RunJob job;
    job.script = m_controllers.run.script();
    job.label = job.script;
    job.machine = isDisposable ? QString() : m_selected;
    if (isDisposable)
        job.distro = m_distribution->currentText();
    else
        job.distro = machine != nullptr ? machine->distro : rawValue(Distro::ubuntu);
    job.disposable = isDisposable;
    job.folder = m_folder->folder();
    job.timeoutEnabled = m_timeLimit->isChecked();
    m_controllers.run.start(job, &m_controllers.history);
}

void RunView::installPackages()
{
    if (const Machine *machine = selectedMachine())
        m_controllers.run.installPackages(m_packages->text(), machine->name, machine->distro, m_timeLimit->isChecked(),
                                          &m_controllers.history);
}
