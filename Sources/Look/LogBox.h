#pragma once

// A scrolling box of fixed height with what a tool printed, in small monospaced type on a faint tint, filling the
// width. However often its text changes it is redrawn once per frame at most.

#include "Look/PlainText/PlainTextBox.h"

#include <QTimer>

#include <functional>

class LogBox : public PlainTextBox
{
    Q_OBJECT

public:
    /// `text` is asked for the text, now and in every frame after reload(), and what it reads must outlive the box;
    /// `name` is the accessible name.
    LogBox(const QString &name, int height, std::function<QString()> text, QWidget *parent = nullptr);

    /// Says that the text has changed; an empty box shows it at once, any other within a frame. (It asks for the text
    /// then, because a copy held meanwhile would make the owner of a growing text copy it on every append.)
    void reload();

private:
    void showNow();

    const std::function<QString()> m_text;
    QTimer m_nextFrame;
};
