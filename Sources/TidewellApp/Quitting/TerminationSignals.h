#pragma once

// The signals by which the system or a terminal asks a program to end (SIGTERM, SIGINT, SIGHUP), as a signal of Qt: as
// long as this lives they do not end the program by themselves. One that was ignored at the start (nohup) stays so.

#include "Process/Pipe.h"

#include <QObject>

#include <array>
#include <csignal>
#include <optional>

class QSocketNotifier;

class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    /// One at a time, on the main thread.
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    /// On the main thread, once the event loop gets to it.
    void received();

private:
    static constexpr std::array<int, 3> handled{SIGTERM, SIGINT, SIGHUP};

    /// A signal handler may do nothing but write into it.
    const std::optional<Pipe> m_pipe;
    std::array<struct sigaction, handled.size()> m_before{};
};
