#include "ContentView/Screens/Run/RunStatus.h"

#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/IndeterminateProgress.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "RunController/RunController.h"
#include "Text/Duration.h"

#include <QHBoxLayout>

#include <chrono>

using namespace Qt::StringLiterals;

RunStatus::RunStatus(RunController &run, QWidget *parent) : QWidget(parent), m_run(run)
{
    m_stop = Controls::button(u"Stop"_s, u"Stop the run"_s, this);
    connect(m_stop, &QPushButton::clicked, &run, &RunController::stop);
    setFocusProxy(m_stop);
    m_phase = new PlainLabel({}, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd, this);
    m_elapsed = new PlainLabel({}, Typography::body(), Colours::secondary, PlainLabel::Fit::elideEnd, this);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_stop);
    row->addWidget(new Spinner(this));
    row->addWidget(m_phase);
    row->addWidget(m_elapsed);
    row->addStretch();

    connect(&run, &RunController::phaseChanged, this, [this] { m_phase->setText(m_run.phase()); });
    m_phase->setText(run.phase());

    m_second.setInterval(std::chrono::seconds(1));
    m_second.setTimerType(Qt::PreciseTimer);
    connect(&m_second, &QTimer::timeout, this, &RunStatus::showElapsed);
    connect(&run, &RunController::startedAtChanged, this, &RunStatus::followStart);
    followStart();
}

void RunStatus::showElapsed()
{
    QString elapsed;
    if (const std::optional<QDateTime> start = m_run.startedAt())
        elapsed = QString::asprintf("%.0fs", Duration::between(*start, QDateTime::currentDateTimeUtc()));
    m_elapsed->setText(elapsed);
}

void RunStatus::followStart()
{
    if (m_run.startedAt())
        m_second.start();
    else
        m_second.stop();
    showElapsed();
}
