#include "ContentView/SetupHeader.h"

#include "Look/Accessibility/Announcement.h"
#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/IndeterminateProgress.h"
#include "Look/LogBox.h"
#include "Look/NoteText.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/StatusDot.h"
#include "Look/Typography.h"
#include "SetupController/SetupController.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

constexpr int setupLogHeight = 90;

struct Appearance {
    StatusDot::Colour colour;
    QString title;
};

Appearance appearanceOf(OrbState state)
{
    switch (state) {
    case OrbState::checking:
        return {StatusDot::Colour::grey, u"Checking…"_s};
    case OrbState::notInstalled:
        return {StatusDot::Colour::red, u"OrbStack not installed"_s};
    case OrbState::stopped:
        return {StatusDot::Colour::orange, u"OrbStack stopped"_s};
    case OrbState::starting:
        return {StatusDot::Colour::yellow, u"OrbStack starting…"_s};
    case OrbState::running:
        return {StatusDot::Colour::green, u"OrbStack running"_s};
    }
    Q_UNREACHABLE();
}

const auto tooOld = u"OrbStack needs macOS 14 or later. This Mac is older, so the sandbox cannot run here."_s;
const auto whatItIs =
    u"OrbStack runs real Linux machines on your Mac. It is free for personal use. After installing, it "
    "may ask to be opened once to finish its setup."_s;
const auto noHomebrew = u"Homebrew was not found, so the app will not install anything. Get OrbStack from orbstack.dev "
                        "(free for personal use), then come back here."_s;

} // namespace

SetupHeader::SetupHeader(SetupController &setup, QWidget *parent) : QWidget(parent), m_setup(setup)
{
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    layout->addLayout(makeStatusRow());
    m_explanation = new PlainLabel({}, Typography::callout(), Colours::secondary, PlainLabel::Fit::wrap, this);
    layout->addWidget(m_explanation);
    m_progress = new QWidget(this);
    m_progress->setLayout(makeProgressRow());
    layout->addWidget(m_progress);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    for (const auto changed : {&SetupController::stateChanged, &SetupController::hasBrewChanged,
                               &SetupController::busyChanged, &SetupController::noteChanged})
        connect(&setup, changed, this, &SetupHeader::showFields);
    connect(&setup, &SetupController::logChanged, this, &SetupHeader::showLog);
    connect(&setup, &SetupController::stateChanged, this, [this] { Announcement::say(this, m_title->text()); });
    showFields();
    showLog();
}

QLayout *SetupHeader::makeStatusRow()
{
    m_dot = new StatusDot(12, this);
    m_title = new PlainLabel({}, Typography::headline(), Colours::primary, PlainLabel::Fit::elideEnd, this);
    m_install = Controls::button(u"Install OrbStack"_s, u"Install OrbStack with Homebrew"_s, this);
    m_get = Controls::button(u"Get OrbStack"_s, u"Open orbstack.dev in the browser"_s, this);
    m_start = Controls::button(u"Start"_s, u"Start OrbStack"_s, this);
    m_stop = Controls::button(u"Stop"_s, u"Stop OrbStack"_s, this);
    connect(m_install, &QPushButton::clicked, &m_setup, &SetupController::install);
    connect(m_get, &QPushButton::clicked, &m_setup, &SetupController::openOrbStackSite);
    connect(m_start, &QPushButton::clicked, &m_setup, &SetupController::start);
    connect(m_stop, &QPushButton::clicked, &m_setup, &SetupController::stop);

    auto *row = new QHBoxLayout;
    row->setSpacing(10);
    row->addWidget(m_dot);
    row->addWidget(m_title);
    row->addStretch();
    for (QPushButton *button : {m_install, m_get, m_start, m_stop})
        row->addWidget(button);
    return row;
}

QLayout *SetupHeader::makeProgressRow()
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new IndeterminateBar(m_progress), 1);
    m_cancel = Controls::button(u"Cancel"_s, u"Cancel the OrbStack operation"_s, m_progress);
    connect(m_cancel, &QPushButton::clicked, &m_setup, &SetupController::cancel);
    row->addWidget(m_cancel);
    return row;
}

void SetupHeader::showFields()
{
    QWidget *focused = window()->focusWidget();
    const Appearance appearance = appearanceOf(m_setup.state());
    m_dot->setState(appearance.colour, appearance.title);
    m_title->setText(appearance.title);
    m_progress->setVisible(m_setup.busy());
    showButtons();
    showExplanation();
    showNote();
    keepFocus(focused);
}

void SetupHeader::showButtons()
{
    const bool isMissing = m_setup.state() == OrbState::notInstalled;
    const bool isRunning = m_setup.state() == OrbState::running;
    m_install->setVisible(isMissing && m_setup.hasBrew());
    m_get->setVisible(isMissing && !m_setup.hasBrew());
    m_start->setVisible(!isMissing);
    m_stop->setVisible(!isMissing);
    m_install->setEnabled(!m_setup.busy());
    m_start->setEnabled(!m_setup.busy() && !isRunning);
    m_stop->setEnabled(!m_setup.busy() && isRunning);
}

void SetupHeader::showExplanation()
{
    const bool isMissing = m_setup.state() == OrbState::notInstalled;
    if (!m_setup.macSupported()) {
        m_explanation->setFont(Typography::body());
        m_explanation->setColour(Colours::red);
        m_explanation->setText(tooOld);
    } else if (isMissing) {
        m_explanation->setText(m_setup.hasBrew() ? whatItIs : noHomebrew);
    }
    m_explanation->setVisible(!m_setup.macSupported() || isMissing);
}

void SetupHeader::showNote()
{
    const QString note = m_setup.note();
    if (m_note == nullptr && !note.isEmpty()) {
        m_note = new NoteText(Typography::callout(), Colours::secondary, this);
        auto *column = static_cast<QVBoxLayout *>(layout());
        column->insertWidget(column->indexOf(m_progress) + 1, m_note);
        setTabOrder(m_cancel, m_note);
        if (m_log != nullptr)
            m_note->stackUnder(m_log); // which is the order of reading, too
    }
    if (m_note != nullptr)
        m_note->setText(note);
}

void SetupHeader::showLog()
{
    if (m_log != nullptr) {
        m_log->reload();
    } else if (!m_setup.log().isEmpty()) {
        m_log = new LogBox(u"Setup log"_s, setupLogHeight, [&setup = m_setup] { return setup.log(); }, this);
        layout()->addWidget(m_log);
        setTabOrder(m_note != nullptr ? static_cast<QWidget *>(m_note) : m_cancel, m_log);
        m_log->hideWhileEmpty();
    }
}

void SetupHeader::keepFocus(QWidget *focused)
{
    // A button that went away or became disabled hands the keyboard to the one that takes its place.
    if (focused == nullptr || !isAncestorOf(focused) || (focused->isEnabled() && focused->isVisible()))
        return;
    for (QPushButton *button : {m_cancel, m_install, m_get, m_start, m_stop}) {
        if (button->isVisible() && button->isEnabled()) {
            button->setFocus();
            return;
        }
    }
}
