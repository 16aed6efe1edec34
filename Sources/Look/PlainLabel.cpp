#include "Look/PlainLabel.h"

#include "Text/VisibleText.h"

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
        return VisibleText::elidedEnd(text, longestSentence);
    case PlainLabel::Fit::elideEnd:
        return PlainLabel::oneLine(text);
    case PlainLabel::Fit::elideMiddle:
        return VisibleText::oneLine(VisibleText::elidedMiddle(text, longestLine));
    }
    Q_UNREACHABLE();
}

} // namespace

PlainLabel::PlainLabel(const QString &text, const QFont &font, ColourOfPalette colour, Fit fit, QWidget *parent)
    : QLabel(parent),
      m_fit(fit),
      m_colour(new ColourFollower(QPalette::WindowText, colour, this))
{
    setTextFormat(Qt::PlainText);
    setForegroundRole(QPalette::WindowText); // which has the colour; on a list the role would be another
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
}

QString PlainLabel::oneLine(const QString &text)
{
    return VisibleText::oneLine(VisibleText::elidedEnd(text, longestLine));
}

void PlainLabel::setText(const QString &text)
{
    const QString shown = cut(text, m_fit);
    if (shown != this->text())
        QLabel::setText(shown);
}

void PlainLabel::setOwnText(const QString &text)
{
    const QString shown = VisibleText::elidedEnd(text, longestLine);
    if (shown != this->text())
        QLabel::setText(shown);
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
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine, elided());
}

QString PlainLabel::elided() const
{
    return fontMetrics().elidedText(text(), m_fit == Fit::elideMiddle ? Qt::ElideMiddle : Qt::ElideRight, width());
}
