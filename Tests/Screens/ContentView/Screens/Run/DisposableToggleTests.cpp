#include "ContentView/Screens/Run/DisposableToggle.h"

#include <QAccessible>
#include <QMessageBox>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

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

TEST(DisposableToggle, TakesOverTheConsentFromPreferencesOfAFormerNameOnce)
{
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    QSettings().clear();
    const auto key = u"disposableConfirmed"_s;
    QSettings former(folder.filePath(u"former"_s), QSettings::IniFormat);
    DisposableToggle::takeOverConsent(former);
    EXPECT_FALSE(QSettings().contains(key)) << "there was none";
    former.setValue(key, true);
    former.setValue(u"another"_s, 1);
    DisposableToggle::takeOverConsent(former);
    EXPECT_TRUE(QSettings().value(key).toBool());
    EXPECT_EQ(former.allKeys(), QStringList{u"another"_s});
    former.setValue(key, false);
    DisposableToggle::takeOverConsent(former);
    EXPECT_TRUE(QSettings().value(key).toBool()) << "what was said since counts";
}

} // namespace
