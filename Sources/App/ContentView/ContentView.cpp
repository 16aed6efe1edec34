#include "ContentView/ContentView.h"

ContentView::ContentView(const Controllers &controllers, QWidget *parent) : QWidget(parent), m_controllers(controllers)
{
    setMinimumSize(820, 640);
}
