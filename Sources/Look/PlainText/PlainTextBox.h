#pragma once

// Read-only text of any length that the user can select, copy and scroll: the common part of LogBox and NoteText.
//
// Showing a text that only grew costs what is new. A line of any length is as cheap as short ones (see LongLines).

#include <QPlainTextEdit>

class PlainTextBox : public QPlainTextEdit
{
    Q_OBJECT

public:
    enum class WhenGrowing {
        stay,      ///< the view stays where it is
        followEnd, ///< a view that stood at its end follows the end
    };

    PlainTextBox(const QFont &font, WhenGrowing whenGrowing, QWidget *parent = nullptr);

    /// Shows `text`. Selection and scroll position stay when it only grew.
    void showText(const QString &text);

    /// From now on the box is hidden while its text is empty.
    void hideWhileEmpty();

    /// The text shown.
    const QString &shownText() const { return m_shown; }

protected:
    QMimeData *createMimeDataFromSelection() const override;

private:
    const WhenGrowing m_whenGrowing;
    QString m_shown;
    bool m_hidesWhileEmpty = false;
};
