#pragma once

// The rounded ground and outline of what holds text: output, logs, the script, lists. A ring within the outline tells
// where the keyboard is.

#include <QObject>

class QAbstractScrollArea;
class QColor;
class QPainter;
class QPalette;
class QRectF;

/// Gives a scroll area this ground and outline, in place of its own frame. Belongs to the area.
class RoundedFrame : public QObject
{
    Q_OBJECT

public:
    enum class Ground {
        pane,  ///< for reading: a faint tint, outlined on a dark window only
        field, ///< for writing, and for lists: the colour of fields, always outlined
    };

    RoundedFrame(Ground ground, QAbstractScrollArea *area);

    bool eventFilter(QObject *watched, QEvent *event) override;

    /// Fills a rounded rectangle and draws its outline, a point wide, within it. The outline covers whole pixels of the
    /// screen at every scale, so it is sharp at 1.5, too; one whose colour is not valid is not drawn.
    static void draw(QPainter &painter, const QRectF &rectangle, double radius, const QColor &outline,
                     const QColor &ground);

    /// Draws the sign of the keyboard's place: a ring within the rectangle, so many points thick.
    static void drawRing(QPainter &painter, const QRectF &rectangle, double radius, int thickness,
                         const QPalette &palette);

private:
    void paint() const;

    QAbstractScrollArea &m_area;
    const Ground m_ground;
};
