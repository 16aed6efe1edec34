#include <QCoreApplication>

#include <gtest/gtest.h>

#include <csignal>

int main(int argumentCount, char *arguments[])
{
    std::signal(SIGPIPE, SIG_IGN);
    testing::InitGoogleTest(&argumentCount, arguments);
    QCoreApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
