#include "Look/NoteText.h"

#include "Look/Accessibility/Announcement.h"
#include "Text/VisibleText.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>

#include <cmath>

namespace
{

constexpr int mostLines = 6;
constexpr int scrollBarDistance = 6;

} // namespace

NoteText::NoteText(const QFont &font, ColourOfPalette colour, QWidget *parent)
    : PlainTextBox(font, WhenGrowing::stay, parent),
      m_colour(new ColourFollower(QPalette::Text, colour, this))
{
    document()->setDocumentMargin(0);
    setFocusPolicy(Qt::ClickFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    fitHeight();
    hideWhileEmpty();
}

void NoteText::setText(const QString &text)
{
    if (text == shownText())
        return;
    const bool wasVisible = isVisible();
    showText(text);
    setAccessibleName(VisibleText::accessibleName(text));
    fitHeight();
    if (wasVisible)
        Announcement::say(this, text);
}

void NoteText::changeEvent(QEvent *event)
{
    PlainTextBox::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fitHeight();
}

void NoteText::showEvent(QShowEvent *event)
{
    PlainTextBox::showEvent(event);
    // A spontaneous event only tells that the window was minimised or restored.
    if (!event->spontaneous())
        Announcement::say(this, shownText());
}

void NoteText::resizeEvent(QResizeEvent *event)
{
    PlainTextBox::resizeEvent(event);
    if (event->oldSize().width() != event->size().width())
        fitHeight();
}

void NoteText::fitHeight()
{
    // Only as many paragraphs are laid out as can be seen.
    const double most = mostLines * fontMetrics().lineSpacing();
    double height = 0;
    for (QTextBlock block = document()->begin(); block.isValid() && height <= most; block = block.next())
        height += document()->documentLayout()->blockBoundingRect(block).height();
    const bool scrolls = height > most;
    setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    // The text does not touch the scroll bar.
    setViewportMargins(0, 0, scrolls ? scrollBarDistance : 0, 0);
    // What scrolls can be reached by keyboard.
    setFocusPolicy(scrolls ? Qt::StrongFocus : Qt::ClickFocus);
    setFixedHeight(static_cast<int>(std::ceil(std::min(height, most))));
}
