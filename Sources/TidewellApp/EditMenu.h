#pragma once

class QMainWindow;

namespace EditMenu
{

/// Adds the menu Edit, whose actions go to the widget that has the focus and are enabled where that one knows them.
void add(QMainWindow &window);

} // namespace EditMenu
