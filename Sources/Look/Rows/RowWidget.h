#pragma once

// One row of a RowList on screen. To assistive technology it is a group with the row's name, holding its texts and
// buttons.

#include "Look/Rows/RowContent.h"

#include <QWidget>

#include <array>

class PlainLabel;
class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

/// The heights that rows are made of, in pixels; they change with the fonts and the style only.
struct RowMetrics {
    std::array<int, 4> lineHeights{};
    int buttonHeight = 0;

    static RowMetrics current();
    int heightOf(const RowContent &content) const;
};

class RowWidget : public QWidget
{
    Q_OBJECT

public:
    RowWidget(const RowContent &content, QWidget *parent);

    const RowContent &content() const { return m_content; }

    /// Shows another content; what is the same in both is left alone. A focused button that becomes disabled leaves the
    /// focus with the row, and takes it back when it is enabled again.
    void setContent(const RowContent &content);

    /// The row's place in the list; -1 once it is no longer a part of it.
    int index() const { return m_index; }
    void setIndex(int index) { m_index = index; }

    const QList<QPushButton *> &buttons() const { return m_buttons; }

    /// The button that has the focus of the window, or had it before it was disabled; nothing when the focus is
    /// elsewhere.
    std::optional<int> focusedButton() const;

    /// Gives the focus to the button `wanted`, or to the enabled one nearest to it, or to the row itself.
    void focusButton(int wanted, Qt::FocusReason reason);

    /// A mouse button or key is held down on one of the buttons.
    bool isPressed() const;

Q_SIGNALS:
    /// The button with this action was pressed.
    void pressed(int action);

protected:
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void showDot();
    void showLines();
    void showButtons();

    RowContent m_content;
    int m_index = -1;
    std::optional<int> m_buttonBeforeItWasDisabled;
    QHBoxLayout *m_layout;
    QVBoxLayout *m_column;
    StatusDot *m_dot = nullptr;
    QList<PlainLabel *> m_lines;
    QList<QPushButton *> m_buttons;
};
