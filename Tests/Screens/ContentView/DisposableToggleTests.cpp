#include "ContentView/Screens/DisposableToggle.h"

#include <QAccessible>
#include <QMessageBox>
#include <QSettings>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace
{

TEST(DisposableToggle, AsksAlsoWhenAssistiveTechnologySwitchesIt)
{
    QStandardPaths::setTestModeEnabled(true);
    QSettings().clear();
    QWidget window;
    DisposableToggle toggle(&window);
    window.show();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&toggle);
    ASSERT_NE(accessible, nullptr);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(toggle.isChecked());
    EXPECT_EQ(window.findChildren<QMessageBox *>().size(), 1);
}

} // namespace
