#include "ContentView/Screens/Run/DisposableToggle.h"
#include "TidewellApp/FirstInstance.h"
#include "TidewellApp/IgnoredSignals.h"
#include "TidewellApp/LinuxStyle.h"
#include "TidewellApp/MainWindow.h"
#include "TidewellApp/TidewellApp.h"

#include <QAccessible>
#include <QApplication>
#include <QSettings>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    const IgnoredSignals ignoredSignals;
    QApplication application(argumentCount, arguments);
    QApplication::setApplicationName(u"Tidewell"_s);
    QApplication::setOrganizationName(u"Tidewell"_s);
    // On macOS preferences are named after the domain, and so as the bundle.
    QApplication::setOrganizationDomain(u"tidewell.app"_s);
    // By this a Linux desktop finds the icon and the name.
    QApplication::setDesktopFileName(u"app.tidewell.Tidewell"_s);
    QApplication::setApplicationVersion(QStringLiteral(TIDEWELL_VERSION));
#ifndef Q_OS_MACOS // where everything is drawn by the system
    QApplication::setStyle(new LinuxStyle);
#endif
    const std::optional<QString> supportFolder = HistoryStore::applicationSupportFolder();
    std::optional<FirstInstance> instance(
        std::in_place, supportFolder ? std::optional(HistoryStore::folderIn(*supportFolder)) : std::nullopt);
    if (!instance->isFirst())
        return 0;
#ifdef Q_OS_MACOS
    // They were once named after the organisation: com.tidewell.Tidewell.
    QSettings formerPreferences(u"Tidewell"_s, u"Tidewell"_s);
    formerPreferences.setFallbacksEnabled(false);
    DisposableToggle::takeOverConsent(formerPreferences);
#endif
    TidewellApp tidewell;
    QObject::connect(&*instance, &FirstInstance::startedAgain, &tidewell.window(), &MainWindow::comeForward);
    // Who starts it again from here on gets a window, though this one may still have a run to end and its history to
    // save.
    const auto makeWay = [&instance] { instance.reset(); };
    QObject::connect(&tidewell.terminationSignals(), &TerminationSignals::received, &tidewell.window(), makeWay);
    tidewell.window().show();
    const int status = QApplication::exec();
    makeWay();
    // Assistive technology that still asks while the windows go has hung and crashed programs on macOS.
    QAccessible::cleanup();
    return status;
}
