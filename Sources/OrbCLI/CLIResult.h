#pragma once

#include <QString>

#include <cstdint>
#include <cstdio> // stdout and stderr are macros of this header: with it, the two fields have one name everywhere
#include <optional>

/// The result of one finished tool run. Judge it in this order: launchError, stoppedAfter, timedOut, status.
///
///   end of the tool               status                       timedOut   launchError
///   exited                        its exit status              false      none
///   ended by a signal             the signal's number          false      none
///   asked by the time limit       as exited or by a signal     true       none
///   left behind after that        -1                           true       none
///   cancelled                     as exited or by a signal     false      none
///   not started                   -1                           false      the system's description
///
/// Only the caller that cancelled knows that it did. A tool that is asked to terminate may go on: its result comes when
/// it ends, or, where its time limit asked and its caller gave it a grace time, after that (it is left behind then).
struct CLIResult {
    int status = -1;
    QString stdout;
    /// Also holds the line "Could not start …" when the tool could not be started.
    QString stderr;
    bool timedOut = false;
    std::optional<QString> launchError;
    /// Bytes of its output, after which the tool was stopped, because its caller had no use for so many.
    std::optional<std::int64_t> stoppedAfter;

    /// Started, within its time, not stopped for printing too much, and with status 0.
    bool succeeded() const { return !launchError && !timedOut && !stoppedAfter && status == 0; }

    /// Both streams trimmed of white space, the empty ones dropped, the rest joined by one line feed.
    QString combined() const;

    /// Why `command` ("orb list") did not succeed, as a sentence for the user: what the system said, or that it timed
    /// out or printed too much, or all that it printed (possibly nothing). None when it succeeded.
    std::optional<QString> failure(const QString &command) const;
};
