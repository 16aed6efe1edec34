// What the tests of the tool runner need a process of their own for: a child that reports what it was given, and
// programs that quit, or begin, in unusual circumstances. The exit status is the result: 0 is as it should be.

#include "OrbCLI/OrbCLI.h"

#include <QCoreApplication>
#include <QString>
#include <QTimer>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <string_view>

using namespace Qt::StringLiterals;

namespace
{

QString inputKind()
{
    struct stat input = {};
    struct stat nullDevice = {};
    if (::fstat(STDIN_FILENO, &input) != 0 || ::stat("/dev/null", &nullDevice) != 0)
        return u"nothing"_s;
    if (S_ISCHR(input.st_mode) && input.st_rdev == nullDevice.st_rdev)
        return u"null device"_s;
    return S_ISFIFO(input.st_mode) ? u"pipe"_s : u"something else"_s;
}

/// Prints the kind of standard input, the open descriptors, and the signals that are ignored or blocked.
int report()
{
    QString descriptors;
    for (int number = 0; number < 4096; ++number)
        if (::fcntl(number, F_GETFD) >= 0)
            descriptors += u' ' + QString::number(number);
    QString ignored;
    QString blocked;
    sigset_t mask;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action = {};
        if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
            ignored += u' ' + QString::number(signal);
        if (sigismember(&mask, signal) == 1)
            blocked += u' ' + QString::number(signal);
    }
    const QString text = u"input: "_s + inputKind() + u"\ndescriptors:"_s + descriptors + u"\nignored:"_s + ignored +
                         u"\nblocked:"_s + blocked + u'\n';
    std::fputs(text.toUtf8().constData(), stdout);
    return 0;
}

QCoro::Task<> runAndQuit(QString tool, std::optional<QString> input, int *failures, std::optional<CLIResult> *result)
{
    *result = co_await OrbCLI::run(tool, {}, input, 20);
    *failures += (*result)->succeeded() ? 0 : 1;
    QCoreApplication::quit();
}

/// Starts with the named standard streams closed, as from a launcher that has none.
int runWithClosedStreams(const QString &tool)
{
    int failures = 0;
    std::optional<CLIResult> result;
    const QCoro::Task<> task = runAndQuit(tool, u"text"_s, &failures, &result);
    QCoreApplication::exec();
    return failures != 0 || result->stdout != u"text"_s || result->stderr != u"error"_s ? 1 : 0;
}

/// Children that sleep, flood and do not read are left behind at different moments.
int quitWhileChildrenRun(const QString &sleeper, const QString &flooder, bool isAtOnce)
{
    bool quits = false;
    const auto count = [&quits](QUtf8StringView, bool) {
        if (!std::exchange(quits, true))
            QTimer::singleShot(0, [] { QCoreApplication::quit(); });
    };
    const auto never = [](int, const ProcessHandlePointer &) { std::_Exit(3); };
    std::optional<CLIResult> result;
    int failures = 0;
    const QCoro::Task<> suspended = runAndQuit(sleeper, QString(20'000'000, u'x'), &failures, &result);
    OrbCLI::stream(flooder, {}, std::nullopt, std::nullopt, count, never);
    OrbCLI::stream(flooder, {}, std::nullopt, 100, count, never);
    return isAtOnce ? 0 : QCoreApplication::exec();
}

/// With the child signal ignored the system would drop exit statuses.
int runWithIgnoredChildSignal(const QString &tool)
{
    int failures = 0;
    std::optional<CLIResult> result;
    const QCoro::Task<> task = runAndQuit(tool, std::nullopt, &failures, &result);
    QCoreApplication::exec();
    return result->status == 7 ? 0 : 1;
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    const std::string_view mode = argumentCount > 1 ? arguments[1] : "";
    if (mode == "report")
        return report();
    std::signal(SIGPIPE, SIG_IGN);
    if (mode == "closed-streams")
        for (const char *digit = arguments[3]; *digit != '\0'; ++digit)
            ::close(*digit - '0');
    if (mode == "ignored-child-signal")
        std::signal(SIGCHLD, SIG_IGN);
    const QCoreApplication application(argumentCount, arguments);
    const QString tool = QString::fromUtf8(argumentCount > 2 ? arguments[2] : "");
    if (mode == "closed-streams")
        return runWithClosedStreams(tool);
    if (mode == "ignored-child-signal")
        return runWithIgnoredChildSignal(tool);
    if (mode == "quit-at-once" || mode == "quit-later")
        return quitWhileChildrenRun(tool, QString::fromUtf8(arguments[3]), mode == "quit-at-once");
    return 2;
}
