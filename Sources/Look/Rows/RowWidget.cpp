#include "Look/Rows/RowWidget.h"

#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/PlainLabel.h"
#include "Look/RoundedFrame.h"
#include "Look/Typography.h"
#include "Text/VisibleText.h"

#include <QFocusEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

constexpr int dotDiameter = 9;
constexpr double ringRadius = 4;
constexpr int ringThickness = 2;
constexpr int sideMargin = 10;
constexpr int edgeMargin = 8;
constexpr int lineSpacing = 2;
constexpr int spacing = 8;

constexpr std::array allStyles{RowContent::TextStyle::headline, RowContent::TextStyle::caption,
                               RowContent::TextStyle::smallestCaption, RowContent::TextStyle::monospaced};

QFont fontOf(RowContent::TextStyle style)
{
    switch (style) {
    case RowContent::TextStyle::headline:
        return Typography::headline();
    case RowContent::TextStyle::caption:
        return Typography::caption();
    case RowContent::TextStyle::smallestCaption:
        return Typography::smallestCaption();
    case RowContent::TextStyle::monospaced:
        return Typography::monospaced(12);
    }
    Q_UNREACHABLE();
}

ColourOfPalette colourOf(RowContent::TextStyle style)
{
    const bool isCaption = style == RowContent::TextStyle::caption || style == RowContent::TextStyle::smallestCaption;
    return isCaption ? Colours::secondary : Colours::primary;
}

} // namespace

RowMetrics RowMetrics::current()
{
    RowMetrics metrics;
    for (const RowContent::TextStyle style : allStyles)
        metrics.lineHeights[static_cast<std::size_t>(style)] = QFontMetrics(fontOf(style)).height();
    metrics.buttonHeight = QPushButton(u"Start"_s).sizeHint().height();
    return metrics;
}

int RowMetrics::heightOf(const RowContent &content) const
{
    int height = lineSpacing * static_cast<int>(std::max(qsizetype(0), content.lines.size() - 1));
    for (const RowContent::Line &line : content.lines)
        height += lineHeights[static_cast<std::size_t>(line.style)];
    return std::max(height, buttonHeight) + 2 * edgeMargin;
}

RowWidget::RowWidget(const RowContent &content, QWidget *parent)
    : QWidget(parent),
      m_layout(new QHBoxLayout(this)),
      m_column(new QVBoxLayout)
{
    setFocusPolicy(Qt::ClickFocus);
    m_layout->setContentsMargins(sideMargin, edgeMargin, sideMargin, edgeMargin);
    m_layout->setSpacing(spacing);
    m_column->setSpacing(lineSpacing);
    m_layout->addLayout(m_column, 1);
    m_layout->setAlignment(m_column, Qt::AlignVCenter);
    setContent(content);
}

void RowWidget::setContent(const RowContent &content)
{
    const QString name = VisibleText::accessibleName(content.name);
    if (accessibleName() != name)
        setAccessibleName(name);
    m_content = content;
    showDot();
    showLines();
    showButtons();
}

void RowWidget::showDot()
{
    if (!m_content.dot)
        return;
    if (m_dot == nullptr) {
        m_dot = new StatusDot(dotDiameter, this);
        m_layout->insertWidget(0, m_dot);
    }
    m_dot->setState(m_content.dot->colour, m_content.dot->words);
}

void RowWidget::showLines()
{
    // A line of another style is another label; that happens when a port line comes or goes.
    for (qsizetype index = 0; index < m_content.lines.size(); ++index) {
        const RowContent::Line &line = m_content.lines[index];
        const bool isOwn = line.origin == RowContent::Origin::own;
        if (index == m_lines.size()) {
            auto *label =
                new PlainLabel(QString(), fontOf(line.style), colourOf(line.style), PlainLabel::Fit::elideEnd, this);
            m_column->addWidget(label);
            m_lines.append(label);
            // Read before the buttons, also when it comes later.
            if (!m_buttons.isEmpty())
                label->stackUnder(m_buttons.first());
        }
        if (isOwn)
            m_lines[index]->setOwnText(line.text);
        else
            m_lines[index]->setText(line.text);
    }
    while (m_lines.size() > m_content.lines.size())
        delete m_lines.takeLast();
}

void RowWidget::showButtons()
{
    for (qsizetype index = 0; index < m_content.buttons.size(); ++index) {
        const RowContent::Button &content = m_content.buttons[index];
        const int number = static_cast<int>(index);
        const QString description = content.label + u' ' + accessibleName();
        if (index == m_buttons.size()) {
            QPushButton *created = Controls::button(content.label, description, this);
            connect(created, &QPushButton::clicked, this, [this, action = content.action] { Q_EMIT pressed(action); });
            m_layout->addWidget(created);
            m_buttons.append(created);
        }
        QPushButton *button = m_buttons[index];
        if (button->accessibleDescription() != description)
            button->setAccessibleDescription(description);
        if (button->isEnabled() == content.isEnabled)
            continue;
        if (!content.isEnabled && window()->focusWidget() == button) {
            setFocus(Qt::NoFocusReason);
            m_buttonBeforeItWasDisabled = number;
        }
        button->setEnabled(content.isEnabled);
    }
    if (m_buttonBeforeItWasDisabled && m_buttons[*m_buttonBeforeItWasDisabled]->isEnabled()) {
        // Forgotten here, because in a window that is not active no event tells that the focus has moved on.
        QPushButton *button = m_buttons[*std::exchange(m_buttonBeforeItWasDisabled, std::nullopt)];
        if (window()->focusWidget() == this)
            button->setFocus(Qt::NoFocusReason);
    }
}

std::optional<int> RowWidget::focusedButton() const
{
    const QWidget *focused = window()->focusWidget();
    if (focused == this)
        return m_buttonBeforeItWasDisabled.value_or(0);
    for (int index = 0; index < static_cast<int>(m_buttons.size()); ++index) {
        if (m_buttons[index] == focused)
            return index;
    }
    return std::nullopt;
}

void RowWidget::focusButton(int wanted, Qt::FocusReason reason)
{
    QPushButton *nearest = nullptr;
    int least = 0;
    for (int index = 0; index < static_cast<int>(m_buttons.size()); ++index) {
        const int distance = std::abs(index - wanted);
        if (m_buttons[index]->isEnabled() && (nearest == nullptr || distance < least)) {
            nearest = m_buttons[index];
            least = distance;
        }
    }
    if (nearest != nullptr)
        nearest->setFocus(reason);
    else
        setFocus(reason);
}

bool RowWidget::isPressed() const
{
    return std::any_of(m_buttons.begin(), m_buttons.end(), [](const QPushButton *button) { return button->isDown(); });
}

void RowWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor line = palette().color(QPalette::Text);
    line.setAlphaF(0.12F);
    // So many whole pixels at every scale, that all lines look alike.
    const double thickness = std::max(1.0, std::floor(devicePixelRatioF())) / devicePixelRatioF();
    painter.fillRect(QRectF(0, height() - thickness, width(), thickness), line);
    if (!hasFocus())
        return;
    // Not by the style: the one of macOS draws no ring within a widget.
    RoundedFrame::drawRing(painter, rect().adjusted(2, 2, -2, -3), ringRadius, ringThickness, palette());
}

void RowWidget::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void RowWidget::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    // A window that loses the focus gives it back to the same place later.
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        m_buttonBeforeItWasDisabled.reset();
    update();
}
