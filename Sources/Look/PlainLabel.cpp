#include "Look/PlainLabel.h"

#include "Text/VisibleText.h"

#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace
{

/// More than fits a line of any screen; measuring a longer text would only take time.
constexpr qsizetype longestLine = 1000;
constexpr qsizetype longestSentence = 2000;

QString cut(const QString &text, PlainLabel::Fit fit)
{
    switch (fit) {
    case PlainLabel::Fit::wrap:
        return text.size() > longestSentence ? text.first(longestSentence) + u'…' : text;
    case PlainLabel::Fit::elideEnd:
        return VisibleText::oneLine(text.size() > longestLine ? text.first(longestLine) + u'…' : text);
    case PlainLabel::Fit::elideMiddle:
        return VisibleText::oneLine(
            text.size() > longestLine ? text.first(longestLine / 2) + u'…' + text.last(longestLine / 2) : text);
    }
    Q_UNREACHABLE();
}

} // namespace

PlainLabel::PlainLabel(const QString &text, const QFont &font, ColourOfPalette colour, Fit fit, QWidget *parent)
    : QLabel(parent),
      m_fit(fit),
      m_colour(colour)
{
    setTextFormat(Qt::PlainText);
    setForegroundRole(QPalette::WindowText); // which applyColour sets; on a list the role would be another
    setFont(font);
    setWordWrap(fit == Fit::wrap);
    if (fit == Fit::wrap) {
        // Not Minimum: that would be the height of a narrow column, where there is width for a single line.
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
    } else {
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    setText(text);
    applyColour();
}

void PlainLabel::setText(const QString &text)
{
    const QString shown = cut(text, m_fit);
    if (shown != this->text())
        QLabel::setText(shown);
}

void PlainLabel::setOwnText(const QString &text)
{
    const QString shown = text.size() > longestLine ? text.first(longestLine) + u'…' : text;
    if (shown != this->text())
        QLabel::setText(shown);
}

void PlainLabel::setColour(ColourOfPalette colour)
{
    m_colour = colour;
    applyColour();
}

void PlainLabel::setSelectable()
{
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

QSize PlainLabel::sizeHint() const
{
    if (m_fit == Fit::wrap)
        return QLabel::sizeHint();
    // One pixel more than the text: rounding must not cut a text that has its whole width.
    return {fontMetrics().horizontalAdvance(text()) + 1, fontMetrics().height()};
}

QSize PlainLabel::minimumSizeHint() const
{
    const int least = fontMetrics().horizontalAdvance(u'…');
    // One line also for a wrapped text: how many it needs is a matter of its width.
    return {std::min(least, sizeHint().width()), fontMetrics().height()};
}

void PlainLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
        applyColour();
}

bool PlainLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && m_fit != Fit::wrap && toolTip().isEmpty()) {
        if (elided() != text())
            QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), VisibleText::toolTip(text()), this);
        else
            QToolTip::hideText();
        return true;
    }
    return QLabel::event(event);
}

void PlainLabel::paintEvent(QPaintEvent *event)
{
    if (m_fit == Fit::wrap) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine, elided());
}

void PlainLabel::applyColour()
{
    // The parent's palette, because this label's own has the colour already in it.
    const QPalette around = parentWidget() != nullptr ? parentWidget()->palette() : QApplication::palette();
    const QColor colour = m_colour(around);
    const QColor dimmed = around.color(QPalette::Disabled, QPalette::WindowText);
    if (testAttribute(Qt::WA_SetPalette) && palette().color(QPalette::Active, QPalette::WindowText) == colour &&
        palette().color(QPalette::Disabled, QPalette::WindowText) == dimmed)
        return;
    QPalette own;
    own.setColor(QPalette::WindowText, colour);
    own.setColor(QPalette::Disabled, QPalette::WindowText, dimmed);
    setPalette(own);
}

QString PlainLabel::elided() const
{
    return fontMetrics().elidedText(text(), m_fit == Fit::elideMiddle ? Qt::ElideMiddle : Qt::ElideRight, width());
}
