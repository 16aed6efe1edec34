#pragma once

// A scrolling box of fixed height with what a tool printed, in small monospaced type on a faint tint, filling the
// width. However often its text changes it is redrawn once per frame at most.

#include "Look/PlainTextBox.h"

#include <QTimer>

#include <functional>

class LogBox : public PlainTextBox
{
    Q_OBJECT

public:
    /// `text` is asked for the text, now and in every frame after reload(); `name` is the accessible name.
    LogBox(const QString &name, int height, std::function<QString()> text, QWidget *parent = nullptr);

    /// Says that the text has changed; the box shows it within a frame. (It asks for the text then, and not here,
    /// because a copy held meanwhile would make the owner of a growing text copy it on every append.)
    void reload();

    /// From now on the box is hidden while its text is empty.
    void hideWhileEmpty();

private:
    void showNow();

    const std::function<QString()> m_text;
    bool m_hidesWhileEmpty = false;
    QTimer m_nextFrame;
};
