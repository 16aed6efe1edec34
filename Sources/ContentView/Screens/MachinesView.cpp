#include "ContentView/Screens/MachinesView.h"

#include "ContentView/Screens/TrimmedText.h"
#include "Look/Accessibility/Announcement.h"
#include "Look/Alert.h"
#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/IndeterminateProgress.h"
#include "Look/LogBox.h"
#include "Look/NoteText.h"
#include "Look/Picker.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/RowList.h"
#include "Look/Typography.h"
#include "MachineStore/MachineStore.h"
#include "SetupController/SetupController.h"
#include "Text/VisibleText.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

constexpr int spacing = 10;
constexpr int pickerWidth = 180;
constexpr int machineLogHeight = 80;
constexpr qsizetype longestNameAsked = 200;

enum MachineAction { startMachine, stopMachine, deleteMachine };

RowContent contentOf(const Machine &machine, bool busy)
{
    const bool isRunning = machine.isRunning();
    RowContent row;
    row.id = machine.id();
    row.name = machine.name;
    row.dot = isRunning ? RowContent::Dot{StatusDot::Colour::green, u"running"_s}
                        : RowContent::Dot{StatusDot::Colour::grey, u"not running"_s};
    row.lines = {{machine.name, RowContent::TextStyle::headline},
                 {machine.distroLabel() + u" · "_s + machine.state, RowContent::TextStyle::caption}};
    row.buttons = {{startMachine, u"Start"_s, !busy && !isRunning},
                   {stopMachine, u"Stop"_s, !busy && isRunning},
                   {deleteMachine, u"Delete"_s, !busy}};
    return row;
}

} // namespace

MachinesView::MachinesView(const Controllers &controllers, QWidget *parent)
    : QWidget(parent),
      m_machines(controllers.machines),
      m_setup(controllers.setup)
{
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(spacing);
    layout->addWidget(new PlainLabel(u"Machines are real Linux systems on this Mac. They stay until you delete them."_s,
                                     Typography::callout(), Colours::secondary, PlainLabel::Fit::wrap, this));
    layout->addWidget(makeCreationBox());
    m_progress = new IndeterminateBar(this);
    layout->addWidget(m_progress);
    m_log = new LogBox(u"Machine log"_s, machineLogHeight, [this] { return m_machines.log(); }, this);
    m_log->hideWhileEmpty();
    layout->addWidget(m_log);
    m_error = new NoteText(Typography::body(), Colours::red, this);
    layout->addWidget(m_error);
    m_hint = new PlainLabel({}, Typography::body(), Colours::secondary, PlainLabel::Fit::wrap, this);
    layout->addWidget(m_hint);
    m_list = new RowList(u"Machines"_s, this);
    layout->addWidget(m_list, 1);
    layout->addStretch();

    connect(m_list, &RowList::pressed, this, &MachinesView::press);
    connect(m_list, &RowList::focusLeft, m_name, [this] { m_name->setFocus(Qt::OtherFocusReason); });
    connect(&m_machines, &MachineStore::logChanged, m_log, &LogBox::reload);
    for (const auto changed : {&MachineStore::logChanged, &MachineStore::busyChanged})
        connect(&m_machines, changed, this, &MachinesView::announceOutcome);
    for (const auto changed : {&MachineStore::machinesChanged, &MachineStore::errorChanged, &MachineStore::busyChanged})
        connect(&m_machines, changed, this, &MachinesView::showFields);
    connect(&m_setup, &SetupController::stateChanged, this, &MachinesView::showFields);
    showFields();
}

QWidget *MachinesView::makeCreationBox()
{
    auto *box = new QGroupBox(u"New sandbox"_s, this);
    auto *picker = new QWidget(box);
    picker->setFixedWidth(pickerWidth);
    m_distro = new Picker(u"Distro"_s, Picker::Label::visible, picker);
    for (const Distro distro : allDistros)
        m_distro->addItem(rawValue(distro));
    auto *pickerRow = new QHBoxLayout(picker);
    pickerRow->setContentsMargins(0, 0, 0, 0);
    auto *label = new PlainLabel(u"Distro"_s, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd, picker);
    label->setBuddy(m_distro);
    pickerRow->addWidget(label);
    pickerRow->addWidget(m_distro, 1);

    m_name = Controls::textField(u"Name (e.g. scratch)"_s, box);
    m_create = Controls::button(u"Create"_s, u"Create a machine"_s, box);

    auto *row = new QHBoxLayout(box);
    row->setContentsMargins(4, 4, 4, 4);
    row->addWidget(picker);
    row->addWidget(m_name, 1);
    row->addWidget(m_create);

    connect(m_name, &QLineEdit::textChanged, this, &MachinesView::showWhetherToCreate);
    connect(m_name, &QLineEdit::returnPressed, m_create, &QPushButton::click);
    connect(m_create, &QPushButton::clicked, this, &MachinesView::create);
    return box;
}

void MachinesView::showFields()
{
    const bool isRunning = isOrbStackRunning();
    showWhetherToCreate();
    m_progress->setVisible(m_machines.busy());

    const std::optional<QString> error = m_machines.error();
    m_error->setText(isRunning ? error.value_or(QString()) : QString());

    const bool isEmpty = m_machines.machines().isEmpty();
    m_hint->setText(isRunning ? u"No machines yet. Create one above."_s
                              : u"OrbStack is not running, so machines cannot be listed."_s);
    m_hint->setVisible(!isRunning || (isEmpty && !error));
    m_list->setVisible(isRunning && !isEmpty);
    showRows();
}

void MachinesView::showWhetherToCreate()
{
    const bool canCreate = isOrbStackRunning() && !m_machines.busy() && !typedName().isEmpty();
    // The keyboard stays where a rejected name is corrected.
    if (!canCreate && window()->focusWidget() == m_create)
        m_name->setFocus(Qt::OtherFocusReason);
    m_create->setEnabled(canCreate);
}

void MachinesView::showRows()
{
    QList<RowContent> rows;
    rows.reserve(m_machines.machines().size());
    for (const Machine &machine : m_machines.machines())
        rows.append(contentOf(machine, m_machines.busy()));
    m_list->setRows(rows);
}

void MachinesView::announceOutcome()
{
    // The last line tells how it ended; what a tool prints meanwhile can be read in the log.
    if (!m_machines.busy())
        Announcement::say(this, m_machines.log().trimmed().section(u'\n', -1));
}

void MachinesView::create()
{
    m_machines.create(allDistros.at(static_cast<std::size_t>(m_distro->currentIndex())), typedName());
}

void MachinesView::press(int row, int action)
{
    const QString machine = m_machines.machines().at(row).name;
    switch (action) {
    case startMachine:
        m_machines.simple({u"start"_s, machine});
        break;
    case stopMachine:
        m_machines.simple({u"stop"_s, machine});
        break;
    case deleteMachine:
        confirmDeletion(machine);
        break;
    default:
        Q_UNREACHABLE();
    }
}

void MachinesView::confirmDeletion(const QString &machine)
{
    if (m_question != nullptr)
        return;
    const QString shown = VisibleText::oneLine(VisibleText::elidedEnd(machine, longestNameAsked));
    m_question = Alert::open(
        this, u"Delete "_s + shown + u'?', u"The machine and everything inside it will be removed permanently."_s,
        u"Delete"_s, u"Cancel"_s, [this, machine] { m_machines.remove(machine); }, Alert::Kind::destructive);
}

QString MachinesView::typedName() const
{
    return TrimmedText::withoutSpacesAndTabs(m_name->text()).toString();
}

bool MachinesView::isOrbStackRunning() const
{
    return m_setup.state() == OrbState::running;
}
