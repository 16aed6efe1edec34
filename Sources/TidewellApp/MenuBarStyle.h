#pragma once

#include <QProxyStyle>

/// The platform's own style, without the arrow of a menu bar that has no room for its menus: this window is never that
/// narrow, and reading the picture of an arrow loads every image plugin before the window is first painted. For systems
/// whose menu bar is a part of the window.
class MenuBarStyle : public QProxyStyle
{
public:
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const override;
};
