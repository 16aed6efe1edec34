#include "ContentView/ContentView.h"

#include "ContainerStore/ContainerStore.h"
#include "ContentView/RunAnnouncer.h"
#include "ContentView/Screens/ContainersView.h"
#include "ContentView/Screens/HistoryView.h"
#include "ContentView/Screens/MachinesView.h"
#include "ContentView/Screens/Run/RunView.h"
#include "ContentView/SetupHeader.h"
#include "ContentView/TabSelector.h"
#include "Look/Colours.h"
#include "Look/NestedLoops.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "SetupController/SetupController.h"

#include <QPainter>
#include <QPointer>
#include <QScrollArea>
#include <QShowEvent>
#include <QVBoxLayout>

namespace
{

constexpr std::chrono::milliseconds untilPainted(20);
constexpr QMargins padding(12, 12, 12, 12);

// A task may wake after the window, and at the application's end after a controller, is gone.

QCoro::Task<> refreshLists(QPointer<MachineStore> machines, QPointer<ContainerStore> containers)
{
    if (machines)
        co_await machines->refresh();
    if (containers)
        co_await containers->refresh();
}

QCoro::Task<> refreshAll(QPointer<SetupController> setup, QPointer<MachineStore> machines,
                         QPointer<ContainerStore> containers)
{
    co_await setup->refresh();
    if (setup && setup->state() == OrbState::running)
        co_await refreshLists(machines, containers);
}

/// A line one point high, to be seen in light and dark.
class Divider : public QWidget
{
public:
    explicit Divider(QWidget *parent) : QWidget(parent) { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), Colours::line(palette(), 0.4F)); }
};

} // namespace

ContentView::ContentView(const Controllers &controllers, QWidget *parent, std::chrono::milliseconds pollInterval)
    : QWidget(parent),
      m_controllers(controllers),
      m_runActions(this)
{
    setMinimumSize(820, 640);
    // The shortcuts work in the window, whether or not it has a menu bar.
    addActions(m_runActions.all());

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto *header = new SetupHeader(controllers.setup, this);
    header->layout()->setContentsMargins(padding);
    layout->addWidget(header);
    layout->addWidget(new Divider(this));

    m_selector = new TabSelector(this);
    for (const AppTab tab : allAppTabs)
        m_selector->addTab(rawValue(tab));
    auto *selectorRow = new QHBoxLayout;
    selectorRow->setContentsMargins(12, 8, 12, 0);
    selectorRow->addWidget(m_selector, 0, Qt::AlignHCenter);
    layout->addLayout(selectorRow);

    m_screen = new QScrollArea(this);
    m_screen->setFrameShape(QFrame::NoFrame);
    m_screen->setWidgetResizable(true);
    m_screen->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_screen->setFocusPolicy(Qt::NoFocus);
    layout->addWidget(m_screen, 1);
    showScreen();
    focusScreen();

    connect(m_selector, &QTabBar::currentChanged, this, [this](int index) {
        changeTo(allAppTabs.at(static_cast<std::size_t>(index)));
        // Who walks along the tabs by keyboard stays there.
        if (!m_selector->hasFocus())
            focusScreen();
    });

    new RunAnnouncer(controllers.run, this);

    m_sleep.setSingleShot(true);
    m_sleep.setTimerType(Qt::PreciseTimer);
    m_sleep.setInterval(pollInterval);
    connect(&m_sleep, &QTimer::timeout, this, [this] { poll(m_appearance); });

    connect(&controllers.setup, &SetupController::stateChanged, this, [this] {
        if (m_controllers.setup.state() == OrbState::running)
            refreshLists(&m_controllers.machines, &m_controllers.containers);
    });
    // A disposable machine that a run deleted leaves the list at once.
    connect(&controllers.run, &RunController::isRunningChanged, this, [this] {
        if (!m_controllers.run.isRunning())
            m_controllers.machines.refresh();
    });
}

void ContentView::setTab(AppTab tab)
{
    m_selector->setCurrentIndex(static_cast<int>(tab));
    focusScreen();
}

void ContentView::replaceScript(const QString &script)
{
    setTab(AppTab::run);
    if (auto *screen = qobject_cast<RunView *>(m_screen->widget()))
        screen->replaceScript(script);
}

void ContentView::refresh()
{
    refreshAll(&m_controllers.setup, &m_controllers.machines, &m_controllers.containers);
}

void ContentView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // A spontaneous event only tells that the window was minimised or restored.
    if (event->spontaneous())
        return;
    // Starting a tool takes as long as painting the window, which the user waits for: that goes first.
    QTimer::singleShot(untilPainted, this, [this, appearance = ++m_appearance] {
        if (appearance == m_appearance)
            poll(appearance);
    });
}

void ContentView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        ++m_appearance;
        m_sleep.stop();
    }
}

QWidget *ContentView::makeScreen()
{
    switch (m_tab) {
    case AppTab::run:
        return new RunView(m_controllers, m_runActions);
    case AppTab::machines:
        return new MachinesView(m_controllers);
    case AppTab::history: {
        auto *history = new HistoryView(m_controllers);
        connect(history, &HistoryView::loadRequested, this, &ContentView::replaceScript);
        connect(history, &HistoryView::focusLeft, this, &ContentView::focusScreen);
        return history;
    }
    case AppTab::containers:
        return new ContainersView(m_controllers);
    }
    Q_UNREACHABLE();
}

void ContentView::changeTo(AppTab tab)
{
    if (tab == m_tab)
        return;
    m_tab = tab;
    showScreen();
    Q_EMIT tabChanged(tab);
}

void ContentView::showScreen()
{
    QWidget *before = m_screen->takeWidget();
    // Deleted later, because the change of tabs may have begun with one of its own buttons.
    if (before != nullptr)
        NestedLoops::deleteAfter(before);

    QWidget *screen = makeScreen();
    // Around whatever padding is the screen's own, which depends on where it stands.
    screen->setParent(m_screen->viewport());
    screen->layout()->setContentsMargins(screen->layout()->contentsMargins() + padding);
    m_screen->setWidget(screen);
}

void ContentView::focusScreen()
{
    QWidget *screen = m_screen->widget();
    (screen->focusProxy() != nullptr ? screen : m_selector)->setFocus();
}

QCoro::Task<> ContentView::poll(int appearance)
{
    const QPointer<ContentView> self(this);
    co_await refreshAll(&m_controllers.setup, &m_controllers.machines, &m_controllers.containers);
    if (self && appearance == m_appearance)
        m_sleep.start();
}
