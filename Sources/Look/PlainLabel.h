#pragma once

// Every label of the window. Its text is shown as it is, never read as markup, in a colour that follows a switch of
// light and dark, and however long it is it neither widens the window nor stalls its layout: a single line is cut with
// an ellipsis (the whole, as far as it is sensible, is in the tool tip), a sentence is wrapped. Sentences of the tools,
// which may be of any length, belong into a NoteText.

#include "Look/Colours.h"

#include <QLabel>

class PlainLabel : public QLabel
{
    Q_OBJECT

public:
    enum class Fit {
        wrap,        ///< as many lines as needed, at most about two thousand characters
        elideEnd,    ///< one line, cut at its end
        elideMiddle, ///< one line, cut in its middle: for paths
    };

    PlainLabel(const QString &text, const QFont &font, ColourOfPalette colour, Fit fit, QWidget *parent = nullptr);

    /// How a single line shows a text.
    static QString oneLine(const QString &text);

    /// Shows another text; does nothing when it is the same. In a single line, what has no shape is written out.
    void setText(const QString &text);

    /// Shows a text of our own making, direction marks included: a date needs them in some languages.
    void setOwnText(const QString &text);

    /// Shows the text in another colour.
    void setColour(ColourOfPalette colour) { m_colour->setColour(colour); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString elided() const;

    const Fit m_fit;
    ColourFollower *m_colour;
};
