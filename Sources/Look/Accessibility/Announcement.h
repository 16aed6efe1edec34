#pragma once

// What happened, told in words to who does not see the window.

#include <QString>

class QWidget;

namespace Announcement
{

/// Has `text` spoken soon and once, wherever the keyboard is; `origin` is a widget of the window that it comes from.
/// Does nothing without assistive technology or for an empty text; of a long text the beginning is spoken.
void say(QWidget *origin, const QString &text);

} // namespace Announcement
