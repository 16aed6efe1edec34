#pragma once

// A sentence of a tool or about one (an error, a note, a message), which may be of any length and hold anything: as
// high as its text up to a few lines, then scrolling; selectable; plain; hidden while it is empty. Its accessible name
// is its text, which is announced when it appears.

#include "Look/Colours.h"
#include "Look/PlainText/PlainTextBox.h"

class NoteText : public PlainTextBox
{
    Q_OBJECT

public:
    NoteText(const QFont &font, ColourOfPalette colour, QWidget *parent = nullptr);

    /// Shows another text; does nothing when it is the same.
    void setText(const QString &text);

    /// Shows the text in another colour.
    void setColour(ColourOfPalette colour) { m_colour->setColour(colour); }

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void fitHeight();

    ColourFollower *m_colour;
};
