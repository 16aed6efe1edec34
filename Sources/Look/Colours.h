#pragma once

// The colours that carry a meaning, as pure functions of a palette: dark tones on a light window, light tones on a dark
// one, each readable as text on the window's colour and on a pane. What paints asks in each paint event; a
// ColourFollower asks again when the palette changes.

#include <QObject>
#include <QPalette>

/// A colour of Colours.
using ColourOfPalette = QColor (*)(const QPalette &);

namespace Colours
{

/// True when the palette's window is dark.
bool isDark(const QPalette &palette);

/// Text that matters most.
QColor primary(const QPalette &palette);
/// Dimmed text: captions, hints, progress.
QColor secondary(const QPalette &palette);
/// What an empty field asks for: the palette's own colour, unless it cannot well be read on a field. (Some dark themes
/// set every colour but this one, which is then a light theme's black.)
QColor placeholder(const QPalette &palette);

QColor red(const QPalette &palette);
QColor orange(const QPalette &palette);
QColor green(const QPalette &palette);
QColor purple(const QPalette &palette);

/// How well the two can be told apart, from 1 to 21, as the Web Content Accessibility Guidelines measure it. Opaque
/// colours only.
double contrast(const QColor &one, const QColor &other);
/// The least contrast at which text is readable.
constexpr double readable = 4.5;

/// `over` covering a share, 0 to 1, of `under`; opaque. For what is large: Qt shares out a large translucent shape
/// among threads, and waking those takes longer than painting it.
QColor mixed(const QColor &over, const QColor &under, float share);
/// Lines and frames on a window: secondary text covering that share of the window's colour.
QColor line(const QPalette &palette, float share);
/// The ground of the output pane and of log boxes: black covering 6 % of the window's colour, light and dark.
QColor pane(const QPalette &palette);
/// The ground of what was found in the output.
QColor found(const QPalette &palette);

} // namespace Colours

/// Keeps one role of a widget's palette in a colour of the palette around the widget, through every switch of light and
/// dark. While the widget is disabled the role has the platform's own colour. Belongs to the widget.
class ColourFollower : public QObject
{
    Q_OBJECT

public:
    ColourFollower(QPalette::ColorRole role, ColourOfPalette colour, QWidget *widget);

    /// Follows another colour from now on.
    void setColour(ColourOfPalette colour);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void apply();

    QWidget &m_widget;
    const QPalette::ColorRole m_role;
    ColourOfPalette m_colour;
};
