#include "TidewellApp/MenuBarStyle.h"

QIcon MenuBarStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    if (icon == SP_ToolBarHorizontalExtensionButton)
        return {};
    return QProxyStyle::standardIcon(icon, option, widget);
}
