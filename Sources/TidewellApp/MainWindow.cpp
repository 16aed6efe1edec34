#include "TidewellApp/MainWindow.h"

#include "ContentView/ContentView.h"
#include "TidewellApp/Menus.h"

using namespace Qt::StringLiterals;

MainWindow::MainWindow(const Controllers &controllers) : m_content(new ContentView(controllers, this))
{
    setWindowTitle(u"Tidewell"_s);
    setCentralWidget(m_content);
    Menus::add(*this, *m_content, controllers.setup);
    resize(960, 760);
}
