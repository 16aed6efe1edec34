#pragma once

class QMainWindow;
class QMenu;

namespace EditMenu
{

/// Adds the menu Edit, whose actions go to the widget that has the focus and are enabled where that one knows them.
QMenu *add(QMainWindow &window);

} // namespace EditMenu
