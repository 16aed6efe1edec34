#pragma once

// Screens that are not built yet; each says so.

class QWidget;

namespace ComingScreens
{

QWidget *machines();
QWidget *history();
QWidget *containers();

} // namespace ComingScreens
