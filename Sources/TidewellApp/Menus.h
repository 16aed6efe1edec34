#pragma once

class ContentView;
class QMainWindow;
class SetupController;

namespace Menus
{

/// Gives the window its menu bar: File, Edit, View, Window and Help; on macOS the system adds the application's own
/// menu with About and Quit, elsewhere those are under Help and File. `content` and `setup` must outlive the menu bar.
void add(QMainWindow &window, ContentView &content, SetupController &setup);

} // namespace Menus
