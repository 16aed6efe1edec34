#pragma once

class ContentView;
class QMainWindow;
class RunController;

namespace FileMenu
{

/// Adds the menu File: opening and saving the script, closing the window, and (outside macOS, where the application's
/// own menu has it) quitting.
void add(QMainWindow &window, ContentView &content, RunController &run);

} // namespace FileMenu
