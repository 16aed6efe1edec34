#pragma once

#include <QProxyStyle>

/// The platform's own style, with what it leaves hard to see drawn by us, all in one form: a thin rounded outline on an
/// opaque ground, and one ring where the keyboard is. For systems other than macOS.
///
///   text fields     rounded; their outline can be told from a dark window
///   check boxes     an outline of full contrast, checked or not, also within the ring
///   group boxes     one frame that holds the title, too
///   focus           the ring, however the focus came: by key, by mouse or by the application
///   placeholders    readable, also where a theme forgot their colour
///   links           the same
///   selected text   readable on the colour of selections
///   the menu bar    without the arrow for menus that find no room: this window is never that narrow, and reading the
///                   picture of an arrow loads every image plugin before the window is first painted
class LinuxStyle : public QProxyStyle
{
public:
    void polish(QPalette &palette) override;
    using QProxyStyle::polish;

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const override;
};
