#include "TidewellApp/MainWindow.h"

#include "ContentView/ContentView.h"
#include "RunController/RunController.h"
#include "TidewellApp/Menus.h"
#include "TidewellApp/WindowIcon.h"

#include <QApplication>
#include <QScreen>
#include <QSettings>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace
{

const auto placeKey = u"windowPlace"_s;

} // namespace

MainWindow::MainWindow(const Controllers &controllers) : m_content(new ContentView(controllers, this))
{
    setWindowTitle(u"Tidewell"_s);
    setWindowIcon(WindowIcon::icon());
    setCentralWidget(m_content);
    Menus::add(*this, *m_content, controllers);
    restorePlace();
    connect(&controllers.run, &RunController::isRunningChanged, this, [this, &run = controllers.run] {
        if (!run.isRunning() && QGuiApplication::applicationState() != Qt::ApplicationActive)
            Q_EMIT attentionWanted();
    });
    connect(this, &MainWindow::attentionWanted, this, [this] { QApplication::alert(this); });
}

MainWindow::~MainWindow()
{
    QSettings().setValue(placeKey, saveGeometry());
}

void MainWindow::comeForward()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::restorePlace()
{
    // The frame that the system will put around is not known yet.
    const int titleBar =
        style()->pixelMetric(QStyle::PM_TitleBarHeight) + 2 * style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    resize(QSize(960, 760).boundedTo(screen()->availableSize() - QSize(0, titleBar)));
    // Brings a window whose screen is gone back onto one that is there.
    restoreGeometry(QSettings().value(placeKey).toByteArray());
}
