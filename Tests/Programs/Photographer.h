#pragma once

// Takes the pictures of one state of the window: light and dark, small and large.

#include <QApplication>
#include <QPalette>
#include <QString>

#include <functional>

class MainWindow;
class QMainWindow;
class TestWindow;

class Photographer
{
public:
    explicit Photographer(const QString &folder);

    /// Pictures of the window, with an alert in its middle when one shows.
    void take(QMainWindow &window, const QString &name) const;

private:
    const QString m_folder;
    const QPalette m_light = QApplication::palette();
};

/// Shows the window and waits until OrbStack's state is known and `isReady` holds.
void showWindow(TestWindow &tools, MainWindow &window, const std::function<bool()> &isReady);
