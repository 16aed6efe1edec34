#pragma once

#include <QIcon>

namespace WindowIcon
{

/// What a title bar, a task bar and a switcher show. On macOS nothing, because there the bundle's icon does that, and
/// an icon of the window would stand beside its title.
QIcon icon();

} // namespace WindowIcon
