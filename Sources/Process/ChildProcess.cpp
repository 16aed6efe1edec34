#include "Process/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#ifdef __linux__
#include <sys/syscall.h>
#else
#include <sys/event.h>
#endif

namespace
{

class FileActions
{
public:
    FileActions() { ::posix_spawn_file_actions_init(&m_actions); }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;

    void connect(int target, int source) { note(::posix_spawn_file_actions_adddup2(&m_actions, source, target)); }
    void connectNullDevice(int target)
    {
        note(::posix_spawn_file_actions_addopen(&m_actions, target, "/dev/null", O_RDONLY, 0));
    }
    void closeTheRest()
    {
        // Ours are all close-on-exec; this is for what the program that started us left open. macOS: see Attributes.
#if defined(__GLIBC__) && (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 34))
        note(::posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1));
#endif
    }

    const posix_spawn_file_actions_t *get() const { return &m_actions; }
    int error() const { return m_error; }

private:
    void note(int error) { m_error = m_error != 0 ? m_error : error; }

    posix_spawn_file_actions_t m_actions;
    int m_error = 0;
};

class Attributes
{
public:
    Attributes()
    {
        ::posix_spawnattr_init(&m_attributes);
        sigset_t signals;
        sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&m_attributes, &signals);
        // Ignored signals are inherited, and this program ignores the broken-pipe signal.
        sigfillset(&signals);
        sigdelset(&signals, SIGKILL);
        sigdelset(&signals, SIGSTOP);
        ::posix_spawnattr_setsigdefault(&m_attributes, &signals);
        int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#endif
        ::posix_spawnattr_setflags(&m_attributes, static_cast<short>(flags));
    }
    ~Attributes() { ::posix_spawnattr_destroy(&m_attributes); }
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;

    const posix_spawnattr_t *get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

bool holdsNul(const std::string &text)
{
    return text.find('\0') != std::string::npos;
}

std::vector<char *> pointers(std::vector<std::string> &texts)
{
    std::vector<char *> result;
    result.reserve(texts.size() + 1);
    for (std::string &text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

} // namespace

int ChildProcess::start(const std::string &tool, const std::vector<std::string> &arguments,
                        const std::map<std::string, std::string> &environment, const StandardStreams &streams)
{
    std::vector<std::string> argumentTexts{tool};
    argumentTexts.insert(argumentTexts.end(), arguments.begin(), arguments.end());
    // The system would end such a text at its NUL: refused rather than passed on as something else.
    if (std::any_of(argumentTexts.begin(), argumentTexts.end(), holdsNul))
        return EINVAL;
    std::vector<std::string> variableTexts;
    variableTexts.reserve(environment.size());
    for (const auto &[name, value] : environment)
        variableTexts.emplace_back(name).append("=").append(value);

    FileActions actions;
    if (streams.input)
        actions.connect(STDIN_FILENO, *streams.input);
    else
        actions.connectNullDevice(STDIN_FILENO);
    actions.connect(STDOUT_FILENO, streams.output);
    actions.connect(STDERR_FILENO, streams.errorOutput);
    actions.closeTheRest();
    if (actions.error() != 0)
        return actions.error();

    const Attributes attributes;
    const std::lock_guard guard(m_lock);
    pid_t pid = 0;
    const int error = ::posix_spawn(&pid, tool.c_str(), actions.get(), attributes.get(), pointers(argumentTexts).data(),
                                    pointers(variableTexts).data());
    if (error == 0)
        m_pid = pid;
    return error;
}

bool ChildProcess::isRunning()
{
    const std::lock_guard guard(m_lock);
    return isRunningLocked();
}

void ChildProcess::terminate()
{
    const std::lock_guard guard(m_lock);
    if (isRunningLocked())
        ::kill(m_pid, SIGTERM);
}

int ChildProcess::status()
{
    const std::lock_guard guard(m_lock);
    return m_status.value_or(-1);
}

FileDescriptor ChildProcess::openExitNotice() const
{
#ifdef __linux__
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, m_pid, 0)));
#else
    FileDescriptor queue(::kqueue());
    struct kevent exit = {};
    EV_SET(&exit, static_cast<uintptr_t>(m_pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    if (queue.isOpen() && ::kevent(queue.number(), &exit, 1, nullptr, 0, nullptr) != 0)
        queue.close();
    return queue;
#endif
}

bool ChildProcess::isRunningLocked()
{
    if (m_pid <= 0 || m_status)
        return false;
    int status = 0;
    const pid_t ended = ::waitpid(m_pid, &status, WNOHANG);
    if (ended == 0)
        return true;
    if (ended == m_pid)
        m_status = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
    else
        m_status = -1; // someone else in this process collected it: gone, and its status with it
    return false;
}
