#include "TidewellApp/ApplicationStyle.h"
#include "TidewellApp/MainWindow.h"
#include "TidewellApp/TidewellApp.h"

#include <QApplication>

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    QApplication application(argumentCount, arguments);
    QApplication::setApplicationName(u"Tidewell"_s);
    QApplication::setOrganizationName(u"Tidewell"_s);
    QApplication::setApplicationVersion(QStringLiteral(TIDEWELL_VERSION));
    QApplication::setStyle(new ApplicationStyle);
    TidewellApp tidewell;
    tidewell.window().show();
    return QApplication::exec();
}
