#pragma once

class ContentView;
class MainWindow;
struct Controllers;

namespace Menus
{

/// Gives the window its menu bar: File, Edit, View, Run, Window and Help; on macOS the system adds the application's
/// own menu with About and Quit, elsewhere those are under Help and File. All of it must outlive the window.
void add(MainWindow &window, const Controllers &controllers);

} // namespace Menus
