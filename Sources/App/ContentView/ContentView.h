#pragma once

// The window's root: the setup header, the tab selector, the selected screen, and the polling that keeps the
// controllers fresh.

#include "ContentView/AppTab.h"
#include "ContentView/Controllers.h"

#include <QWidget>

class ContentView : public QWidget
{
    Q_OBJECT

public:
    explicit ContentView(const Controllers &controllers, QWidget *parent = nullptr);

private:
    const Controllers m_controllers;
};
