#include <QApplication>

#include <gtest/gtest.h>

#include <csignal>

#ifdef __SANITIZE_ADDRESS__
// A fallback font of Qt's keeps what fontconfig found for it until the process ends, and longer.
extern "C" const char *__lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier)
const char *__lsan_default_suppressions()             // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libfontconfig";
}
#endif

int main(int argumentCount, char *arguments[])
{
    std::signal(SIGPIPE, SIG_IGN);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argumentCount, arguments);
    QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
