#include "ContentView/Screens/Run/OutputSection.h"

#include "ContentView/RunActions.h"
#include "Find/FindablePane.h"
#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "OutputPane/OutputCopy.h"
#include "OutputPane/OutputPane.h"
#include "RunController/RunController.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

constexpr int buttonSpacing = 12;

} // namespace

OutputSection::OutputSection(RunController &run, const RunActions &actions, QWidget *parent)
    : QWidget(parent),
      m_run(run)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addLayout(makeHeader(actions));
    m_loss = new PlainLabel(QString(), Typography::caption(), Colours::secondary, PlainLabel::Fit::wrap, this);
    layout->addWidget(m_loss);
    layout->addWidget(new FindablePane(new OutputPane(run, run.transcript().text()), run, this), 1);

    for (const auto changed :
         {&RunController::revisionChanged, &RunController::transcriptCleared, &RunController::outputLossChanged})
        connect(&run, changed, this, &OutputSection::showEarlierOutput);
    connect(&run, &RunController::outputLossChanged, this, &OutputSection::showLoss);
    showEarlierOutput();
    showLoss();
}

QLayout *OutputSection::makeHeader(const RunActions &actions)
{
    auto *title =
        new PlainLabel(u"Output"_s, Typography::headline(), Colours::primary, PlainLabel::Fit::elideEnd, this);
    m_earlierOutput = new PlainLabel(u"Earlier output is kept: Run ▸ Show All Output"_s, Typography::caption(),
                                     Colours::secondary, PlainLabel::Fit::elideEnd, this);
    // Cut before anything else of the row is.
    m_earlierOutput->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    QPushButton *copy = Controls::button(u"Copy output"_s, {}, this);
    QPushButton *clear = Controls::button(u"Clear"_s, u"Clear the output"_s, this);
    connect(copy, &QPushButton::clicked, this, [this] {
        const TextView &text = m_run.transcript().text();
        OutputCopy::copy(this, text, text.begin(), text.end());
    });
    connect(clear, &QPushButton::clicked, &m_run, &RunController::clearTranscript);
    actions.copyOutput->setButton(copy);
    actions.clearOutput->setButton(clear);

    auto *row = new QHBoxLayout;
    row->setSpacing(buttonSpacing);
    row->addWidget(title);
    row->addWidget(m_earlierOutput, Controls::mostOfTheRow);
    row->addStretch(1);
    row->addWidget(copy);
    row->addWidget(clear);
    return row;
}

void OutputSection::showEarlierOutput()
{
    const Transcript &transcript = m_run.transcript();
    m_earlierOutput->setVisible(transcript.record().begin() < transcript.text().begin());
}

void OutputSection::showLoss()
{
    m_loss->setText(m_run.outputLoss());
    m_loss->setVisible(!m_run.outputLoss().isEmpty());
}
