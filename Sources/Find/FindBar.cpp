#include "Find/FindBar.h"

#include "Look/Accessibility/Announcement.h"
#include "Look/Controls.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <QSignalBlocker>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

constexpr int spacing = 8;
constexpr int narrowestField = 100;
constexpr int widestField = 320;
/// Room for the numbers of a million matches, so that the buttons stay where they are.
const auto usualCount = u"1,000,000 of 1,000,000"_s;
/// What takes less shows its result alone.
constexpr auto untilSearchIsShown = std::chrono::milliseconds(100);
/// Who types on is not told of each key.
constexpr auto untilAnnounced = std::chrono::milliseconds(500);

QPushButton *stepButton(const QString &label, const QString &name, QWidget *parent)
{
    QPushButton *button = Controls::button(label, {}, parent);
    button->setAccessibleName(name);
    return button;
}

QString countText(std::int64_t number, std::int64_t all)
{
    const QLocale locale;
    if (all == 0)
        return u"Not found"_s;
    if (number == 0)
        return all == 1 ? u"1 match"_s : u"%1 matches"_s.arg(locale.toString(qint64{all}));
    return u"%1 of %2"_s.arg(locale.toString(qint64{number}), locale.toString(qint64{all}));
}

} // namespace

FindBar::FindBar(QWidget *parent)
    : QWidget(parent),
      m_field(Controls::textField(u"Find in output"_s, this)),
      m_count(new PlainLabel({}, Typography::callout(), Colours::secondary, PlainLabel::Fit::elideEnd, this))
{
    QPushButton *const previous = stepButton(u"Previous"_s, u"Previous match"_s, this);
    QPushButton *const next = stepButton(u"Next"_s, u"Next match"_s, this);
    m_matchCase = new QCheckBox(u"Match case"_s, this);
    setFocusProxy(m_field);
    m_field->setMaxLength(longestText);
    m_field->setMinimumWidth(narrowestField);
    m_field->setMaximumWidth(widestField);
    m_field->installEventFilter(this);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(m_field, 1);
    row->addWidget(m_count);
    row->addWidget(previous);
    row->addWidget(next);
    row->addWidget(m_matchCase);
    row->addStretch();

    connect(m_field, &QLineEdit::textChanged, this, &FindBar::patternChanged);
    connect(m_matchCase, &QCheckBox::toggled, this, &FindBar::patternChanged);
    connect(previous, &QPushButton::clicked, this, &FindBar::previousWanted);
    connect(next, &QPushButton::clicked, this, &FindBar::nextWanted);

    m_patience.setSingleShot(true);
    m_patience.setInterval(untilSearchIsShown);
    connect(&m_patience, &QTimer::timeout, this, [this] { m_count->setText(u"Searching…"_s); });
    m_announcement.setSingleShot(true);
    m_announcement.setInterval(untilAnnounced);
    connect(&m_announcement, &QTimer::timeout, this, [this] { Announcement::say(this, m_count->text()); });
}

QString FindBar::text() const
{
    return m_field->text();
}

TextPattern FindBar::pattern() const
{
    return {m_field->text(), m_matchCase->isChecked() ? Qt::CaseSensitive : Qt::CaseInsensitive};
}

void FindBar::setText(const QString &text)
{
    const QString beginning = text.first(std::min<qsizetype>(text.size(), longestText));
    const bool halvesPair = !beginning.isEmpty() && beginning.back().isHighSurrogate();
    const QSignalBlocker silence(m_field);
    m_field->setText(halvesPair ? beginning.chopped(1) : beginning);
}

void FindBar::selectText()
{
    m_field->selectAll();
}

void FindBar::showSearching()
{
    m_announcement.stop();
    m_isAwaited = !text().isEmpty();
    if (m_isAwaited) {
        m_patience.start();
    } else {
        m_patience.stop();
        m_count->setText({});
    }
}

void FindBar::showCount(std::int64_t number, std::int64_t all)
{
    m_patience.stop();
    m_count->setText(countText(number, all));
    // What a run prints is not told.
    if (std::exchange(m_isAwaited, false))
        m_announcement.start();
}

void FindBar::setVisible(bool visible)
{
    // Not earlier: a font is loaded for it, and the window is there sooner without.
    if (visible)
        m_count->setFixedWidth(QFontMetrics(m_count->font()).horizontalAdvance(usualCount));
    QWidget::setVisible(visible);
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        Q_EMIT closeWanted();
    else
        QWidget::keyPressEvent(event);
}

bool FindBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            if (key->modifiers().testFlag(Qt::ShiftModifier))
                Q_EMIT previousWanted();
            else
                Q_EMIT nextWanted();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
