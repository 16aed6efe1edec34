#pragma once

// The rounded ground and outline of what scrolls: output, logs, the script. The outline tells where the keyboard is.

#include <QObject>

class QAbstractScrollArea;

/// Gives a scroll area this ground and outline, in place of its own frame. Belongs to the area.
class RoundedFrame : public QObject
{
    Q_OBJECT

public:
    enum class Ground {
        pane,  ///< for reading: a faint tint, outlined on a dark window only
        field, ///< for writing: the colour of fields, always outlined
    };

    RoundedFrame(Ground ground, QAbstractScrollArea *area);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void paint() const;

    QAbstractScrollArea &m_area;
    const Ground m_ground;
};
