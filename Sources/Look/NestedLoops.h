#pragma once

// Event loops within the application's own. Nothing here starts one, but Qt's file dialog does: what it asks and its
// menus are children of it that stand on the stack until they are answered. Main thread only.

class QWidget;

namespace NestedLoops
{

/// Deletes the widget as deleteLater() does, but never while such a loop goes on, which may be its own: the windows
/// below it are closed, which ends those loops, and it goes once they have returned.
void deleteAfter(QWidget *widget);

} // namespace NestedLoops
