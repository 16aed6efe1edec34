#pragma once

// A filled circle whose colour tells a state at a glance. Its accessible name is the state in words: colour is never
// the only sign.

#include <QLabel>

class StatusDot : public QLabel
{
    Q_OBJECT

public:
    enum class Colour { grey, red, orange, yellow, green };

    explicit StatusDot(int diameter, QWidget *parent = nullptr);

    /// Shows a state; `words` say the same as the colour.
    void setState(Colour colour, const QString &words);

    Colour colour() const { return m_colour; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Colour m_colour = Colour::grey;
};
