#pragma once

class ContentView;
class QAction;
class QMainWindow;
class RunController;

namespace FileMenu
{

/// Adds the menu File: opening and saving the script, saving the output with its own action, closing the window, and
/// (outside macOS, where the application's own menu has it) quitting.
void add(QMainWindow &window, ContentView &content, RunController &run, QAction *saveOutput);

} // namespace FileMenu
