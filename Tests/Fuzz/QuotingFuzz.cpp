// Quoted texts, read back from real shells: each on this computer that a machine could have.

#include "Fuzzing.h"
#include "RunController/ScriptComposition.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <deque>
#include <initializer_list>
#include <vector>

using Fuzzing::require;
using namespace Qt::StringLiterals;

namespace
{

/// A shell that reads its script from a pipe, as in a machine, and goes on from input to input. It finds no programs.
class Shell
{
public:
    explicit Shell(std::initializer_list<const char *> command)
    {
        int input[2] = {-1, -1};
        int output[2] = {-1, -1};
        require(::pipe(input) == 0 && ::pipe(output) == 0, "there are pipes");
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
        ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        for (const int descriptor : {input[0], input[1], output[0], output[1]})
            ::posix_spawn_file_actions_addclose(&actions, descriptor);
        std::vector<char *> arguments;
        for (const char *argument : command)
            arguments.push_back(const_cast<char *>(argument));
        arguments.push_back(nullptr);
        char path[] = "PATH=/nonexistent";
        char locale[] = "LC_ALL=C.UTF-8";
        char *environment[] = {path, locale, nullptr};
        pid_t pid = 0;
        require(::posix_spawn(&pid, arguments[0], &actions, nullptr, arguments.data(), environment) == 0,
                "the shell starts");
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(input[0]);
        ::close(output[1]);
        m_input = input[1];
        m_output = output[0];
    }

    /// What the script prints up to so many NULs; less when it takes longer than a few seconds.
    QByteArray output(const QByteArray &script, int nuls)
    {
        qsizetype written = 0;
        QByteArray output;
        while (output.count('\0') < nuls) {
            pollfd entries[] = {{m_output, POLLIN, 0}, {written < script.size() ? m_input : -1, POLLOUT, 0}};
            const int ready = ::poll(entries, 2, 5000);
            if (ready < 0 && errno == EINTR) // the fuzzer's own alarm
                continue;
            if (ready <= 0)
                break;
            if (entries[1].revents != 0) {
                // So much always fits into a pipe that can be written to.
                const auto size = std::min<std::size_t>(512, static_cast<std::size_t>(script.size() - written));
                const ssize_t count = ::write(m_input, script.data() + written, size);
                if (count <= 0)
                    break;
                written += count;
            }
            if (entries[0].revents != 0) {
                char block[4096];
                const ssize_t count = ::read(m_output, block, sizeof block);
                if (count <= 0)
                    break;
                output.append(block, count);
            }
        }
        return output;
    }

private:
    int m_input = -1;
    int m_output = -1;
};

std::deque<Shell> shells()
{
    std::deque<Shell> found;
    if (::access("/bin/dash", X_OK) == 0)
        found.push_back(Shell{"/bin/dash", "-s"});
    if (::access("/bin/bash", X_OK) == 0)
        found.push_back(Shell{"/bin/bash", "-s"});
    if (::access("/usr/bin/busybox", X_OK) == 0)
        found.push_back(Shell{"/usr/bin/busybox", "sh", "-s"});
    require(!found.empty(), "there is a shell");
    return found;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static std::deque<Shell> all = shells();
    // No path holds a NUL, and no shell reads one.
    const QByteArray text = Fuzzing::utf8(Fuzzing::bytes(data, size)).replace('\0', QByteArray());
    const QString folder = Utf8::toQString(text);
    const QByteArray print = "printf '%s\\0' " + ScriptComposition::quoted(folder).toUtf8() + '\n';
    const QByteArray enter = "( cd() { printf '%s\\0' \"$@\"; return 1; }\n" +
                             ScriptComposition::compose(QString(), folder).toUtf8() + ")\nprintf '%s\\0' \"$?\"\n";
    const QByteArray nul(1, '\0');
    const QByteArray entered = "--" + nul + text + nul + "--" + nul + "/mnt/mac" + text + nul + "97" + nul;
    for (Shell &shell : all) {
        require(shell.output(print, 1) == text + nul, "a shell reads a quoted text as it was");
        require(shell.output(enter, 5) == entered, "a folder is entered by its name, and by no other");
    }
    return 0;
}
