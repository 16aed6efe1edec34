#pragma once

class FindActions;
class QMainWindow;
class QMenu;

namespace EditMenu
{

/// Adds the menu Edit, whose actions go to the widget that has the focus and are enabled where that one knows them; and
/// behind them those for finding.
QMenu *add(QMainWindow &window, const FindActions &findActions);

} // namespace EditMenu
