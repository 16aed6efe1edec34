#include <QApplication>

#include <gtest/gtest.h>

#include <csignal>

int main(int argumentCount, char *arguments[])
{
    std::signal(SIGPIPE, SIG_IGN);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argumentCount, arguments);
    QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
