#include "TidewellApp/OutputWindow.h"

#include "Find/FindablePane.h"
#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "OutputPane/OutputPane.h"
#include "RunController/RunController.h"
#include "TidewellApp/WindowIcon.h"
#include "TidewellApp/WindowPlace.h"

#include <QShortcut>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

const auto outputWindowKey = u"outputWindowPlace"_s;

} // namespace

OutputWindow::OutputWindow(RunController &run, const QList<QAction *> &actions)
    // In the order of reading, which is also that of assistive technology.
    : m_title(new PlainLabel(u"Output"_s, Typography::headline(), Colours::primary, PlainLabel::Fit::elideEnd, this)),
      m_jump(Controls::button(u"Jump to End"_s, {}, this)),
      m_pane(new OutputPane(run, run.transcript().record(), nullptr, OutputPane::Following::whileAtEnd))
{
    setAttribute(Qt::WA_DeleteOnClose);
    // Who closes the main window quits, whether or not this one is still open.
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(u"All Output"_s);
    setWindowIcon(WindowIcon::icon());
    // Wide enough for the bar that finds.
    setMinimumSize(560, 300);
    addActions(actions);
    // The menus' own reaches the window that has them; on macOS, where it reaches all, this one is never asked.
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);

    // Keeps its room, so that nothing moves when it comes and goes.
    QSizePolicy keepsRoom = m_jump->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    m_jump->setSizePolicy(keepsRoom);
    m_jump->hide();
    connect(m_jump, &QPushButton::clicked, m_pane, &OutputPane::jumpToEnd);
    connect(m_pane, &OutputPane::showsEndChanged, this, [this](bool isShown) { offerEnd(!isShown); });

    auto *header = new QHBoxLayout;
    header->addWidget(m_title);
    header->addStretch();
    header->addWidget(m_jump);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(6);
    layout->addLayout(header);
    auto *loss = new PlainLabel(QString(), Typography::caption(), Colours::secondary, PlainLabel::Fit::wrap, this);
    const auto showLoss = [loss, &run] {
        loss->setText(run.outputLoss());
        loss->setVisible(!run.outputLoss().isEmpty());
    };
    connect(&run, &RunController::outputLossChanged, loss, showLoss);
    showLoss();
    layout->addWidget(loss);
    layout->addWidget(new FindablePane(m_pane, run, this), 1);
    m_pane->setFocus();
    WindowPlace::restore(*this, outputWindowKey, {900, 640});
}

OutputWindow::~OutputWindow()
{
    WindowPlace::remember(*this, outputWindowKey);
}

void OutputWindow::offerEnd(bool isOffered)
{
    if (!isOffered && m_jump->hasFocus())
        m_pane->setFocus();
    m_jump->setVisible(isOffered);
}
