#include <QApplication>
#include <QWidget>

#include <csignal>

int main(int argumentCount, char *arguments[])
{
    // Writing a script to a child that has already exited must be a write error, not this program's end.
    std::signal(SIGPIPE, SIG_IGN);
    QApplication application(argumentCount, arguments);
    QWidget window;
    window.setMinimumSize(820, 640);
    window.show();
    return QApplication::exec();
}
