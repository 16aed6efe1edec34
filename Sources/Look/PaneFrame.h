#pragma once

class QWidget;

namespace PaneFrame
{

/// Paints the ground of a pane of output over its whole widget, under what the widget shows: a tint with rounded
/// corners, outlined while the widget has the keyboard focus and, faintly, on a dark window. For use in the widget's
/// paint event.
void paint(QWidget &pane);

} // namespace PaneFrame
