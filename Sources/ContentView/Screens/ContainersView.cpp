#include "ContentView/Screens/ContainersView.h"

#include "ContainerStore/ContainerStore.h"
#include "ContentView/Screens/ContainerLogSheet.h"
#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/IndeterminateProgress.h"
#include "Look/NoteText.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/RowList.h"
#include "Look/Typography.h"
#include "SetupController/SetupController.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QShowEvent>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

constexpr int portsWidth = 150;
constexpr int nameWidth = 160;

enum ContainerAction { startContainer, stopContainer, showLogs, removeContainer };

RowContent contentOf(const ContainerInfo &container, bool busy)
{
    const bool isRunning = container.isRunning();
    RowContent row;
    row.id = container.id;
    row.name = container.name.isEmpty() ? container.id : container.name;
    row.dot = isRunning ? RowContent::Dot{StatusDot::Colour::green, u"running"_s}
                        : RowContent::Dot{StatusDot::Colour::grey, u"not running"_s};
    row.lines = {{container.name, RowContent::TextStyle::headline},
                 {container.image + u" · "_s + container.status, RowContent::TextStyle::caption}};
    if (!container.ports.isEmpty())
        row.lines.append({container.ports, RowContent::TextStyle::smallestCaption});
    row.buttons = {{startContainer, u"Start"_s, !busy && !isRunning},
                   {stopContainer, u"Stop"_s, !busy && isRunning},
                   {showLogs, u"Logs"_s},
                   {removeContainer, u"Remove"_s, !busy}};
    return row;
}

} // namespace

ContainersView::ContainersView(const Controllers &controllers, QWidget *parent)
    : QWidget(parent),
      m_containers(controllers.containers),
      m_setup(controllers.setup)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    layout->addLayout(makeHeader());
    layout->addWidget(makeForm());
    m_progress = new IndeterminateBar(this);
    layout->addWidget(m_progress);
    m_message = new NoteText(Typography::callout(), Colours::secondary, this);
    layout->addWidget(m_message);
    m_error = new NoteText(Typography::body(), Colours::red, this);
    layout->addWidget(m_error);
    m_hint = new PlainLabel(u"No containers."_s, Typography::body(), Colours::secondary, PlainLabel::Fit::wrap, this);
    layout->addWidget(m_hint);
    m_list = new RowList(u"Containers"_s, this);
    layout->addWidget(m_list, 1);

    connect(m_list, &RowList::pressed, this, &ContainersView::press);
    connect(m_list, &RowList::focusLeft, m_image, [this] { m_image->setFocus(Qt::OtherFocusReason); });
    for (const auto changed : {&ContainerStore::containersChanged, &ContainerStore::errorChanged,
                               &ContainerStore::busyChanged, &ContainerStore::messageChanged})
        connect(&m_containers, changed, this, &ContainersView::showFields);
    for (const auto changed : {&SetupController::stateChanged, &SetupController::hasDockerChanged})
        connect(&m_setup, changed, this, &ContainersView::showFields);
    connect(&m_containers, &ContainerStore::showLogsChanged, this, &ContainersView::showLogSheet);
    showFields();
}

void ContainersView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    showLogSheet();
}

void ContainersView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    // The sheet goes with its screen. (A spontaneous event only tells that the window was minimised.)
    if (m_sheet != nullptr && !event->spontaneous())
        m_sheet->close();
}

QLayout *ContainersView::makeHeader()
{
    auto *header = new QHBoxLayout;
    header->addWidget(new PlainLabel(u"Containers (docker ps -a)"_s, Typography::headline(), Colours::primary,
                                     PlainLabel::Fit::elideEnd, this));
    header->addStretch();
    QPushButton *refresh = Controls::button(u"Refresh"_s, u"List the containers again"_s, this);
    header->addWidget(refresh);
    connect(refresh, &QPushButton::clicked, this, [this] { m_containers.refresh(); });
    return header;
}

QWidget *ContainersView::makeForm()
{
    auto *form = new QGroupBox(u"Run a container"_s, this);
    m_image = makeField(u"Image (nginx:latest)"_s, form);
    m_ports = makeField(u"Ports (8080:80)"_s, form);
    m_ports->setFixedWidth(portsWidth);
    m_name = makeField(u"Name (optional)"_s, form);
    m_name->setFixedWidth(nameWidth);
    m_run = Controls::button(u"Run"_s, u"Run a container"_s, form);

    auto *row = new QHBoxLayout(form);
    row->setContentsMargins(4, 4, 4, 4);
    row->addWidget(m_image, 1);
    row->addWidget(m_ports);
    row->addWidget(m_name);
    row->addWidget(m_run);

    connect(m_image, &QLineEdit::textChanged, this, &ContainersView::showWhetherToRun);
    connect(m_run, &QPushButton::clicked, this,
            [this] { m_containers.runContainer(m_image->text(), m_name->text(), m_ports->text()); });
    return form;
}

QLineEdit *ContainersView::makeField(const QString &placeholder, QWidget *form)
{
    QLineEdit *field = Controls::textField(placeholder, form);
    connect(field, &QLineEdit::returnPressed, this, [this] { m_run->click(); });
    return field;
}

void ContainersView::showFields()
{
    showWhetherToRun();
    m_progress->setVisible(m_containers.busy());

    m_message->setText(m_containers.message());
    const std::optional<QString> error = m_containers.error();
    m_error->setColour(ContainerStore::hasDocker() ? Colours::red : Colours::orange);
    m_error->setText(error.value_or(QString()));
    m_hint->setVisible(!error && m_containers.containers().isEmpty());
    showRows();
}

void ContainersView::showWhetherToRun()
{
    const bool canRun = !m_containers.busy() && ContainerStore::hasDocker() && m_setup.state() == OrbState::running &&
                        !m_image->text().isEmpty();
    // The keyboard stays where what was refused is corrected.
    if (!canRun && window()->focusWidget() == m_run)
        m_image->setFocus(Qt::OtherFocusReason);
    m_run->setEnabled(canRun);
}

void ContainersView::showRows()
{
    QList<RowContent> rows;
    rows.reserve(m_containers.containers().size());
    for (const ContainerInfo &container : m_containers.containers())
        rows.append(contentOf(container, m_containers.busy()));
    m_list->setRows(rows);
}

void ContainersView::showLogSheet()
{
    if (!m_containers.showLogs()) {
        if (m_sheet != nullptr)
            m_sheet->close();
    } else if (isVisible() && (m_sheet == nullptr || !m_sheet->isVisible())) {
        // Only once the screen has its place: a sheet belongs to the window that its parent stands in when it opens.
        m_sheet = new ContainerLogSheet(m_containers, this);
        m_sheet->setAttribute(Qt::WA_DeleteOnClose);
        m_sheet->open();
    }
}

void ContainersView::press(int row, int action)
{
    const ContainerInfo container = m_containers.containers().at(row);
    switch (action) {
    case startContainer:
        m_containers.action(u"start"_s, container);
        break;
    case stopContainer:
        m_containers.action(u"stop"_s, container);
        break;
    case showLogs:
        m_containers.logs(container);
        break;
    case removeContainer:
        m_containers.action(u"rm"_s, container);
        break;
    default:
        Q_UNREACHABLE();
    }
}
