#include "TidewellApp/MainWindow.h"

#include "ContentView/ContentView.h"
#include "RunController/RunController.h"
#include "TidewellApp/Menus/Menus.h"
#include "TidewellApp/OutputWindow.h"
#include "TidewellApp/WindowIcon.h"
#include "TidewellApp/WindowPlace.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace
{

const auto mainWindowKey = u"windowPlace"_s;

} // namespace

MainWindow::MainWindow(const Controllers &controllers)
    : m_run(controllers.run),
      m_content(new ContentView(controllers, this)),
      m_saving(controllers.run, *this),
      m_findActions(*m_content, controllers.run)
{
    setWindowTitle(u"Tidewell"_s);
    setWindowIcon(WindowIcon::icon());
    setCentralWidget(m_content);
    Menus::add(*this, controllers);
    WindowPlace::restore(*this, mainWindowKey, {960, 760});
    connect(&controllers.run, &RunController::isRunningChanged, this, [this, &run = controllers.run] {
        if (!run.isRunning() && QGuiApplication::applicationState() != Qt::ApplicationActive)
            Q_EMIT attentionWanted();
    });
    connect(this, &MainWindow::attentionWanted, this, [this] { QApplication::alert(this); });
}

MainWindow::~MainWindow()
{
    delete m_allOutput;
    WindowPlace::remember(*this, mainWindowKey);
}

void MainWindow::comeForward()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::showAllOutput()
{
    if (!m_allOutput)
        m_allOutput = new OutputWindow(m_run, m_findActions.all() << m_saving.action());
    m_allOutput->show();
    m_allOutput->raise();
    m_allOutput->activateWindow();
}
