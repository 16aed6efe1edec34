#pragma once

class QWidget;

namespace HelpWindow
{

/// Brings the window with the README forward, over `window`'s screen; makes it when it is not there. It needs no
/// network; a link opens in the browser.
void show(QWidget &window);

} // namespace HelpWindow
