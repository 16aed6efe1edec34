#pragma once

#include <QString>

#include <cstdio> // stdout and stderr are macros of this header: with it, the two fields have one name everywhere
#include <optional>

/// What one finished tool run left behind. Judge it in this order: launchError, then timedOut, then status.
struct CLIResult {
    /// The exit status, the signal's number for a child ended by a signal, or -1 when it could not be started.
    int status = -1;
    QString stdout;
    /// Also holds the line "Could not start …" when the tool could not be started.
    QString stderr;
    bool timedOut = false;
    std::optional<QString> launchError;

    /// Started, within its time, and with status 0.
    bool succeeded() const { return !launchError && !timedOut && status == 0; }

    /// Both streams trimmed of white space, the empty ones dropped, the rest joined by one line feed.
    QString combined() const;

    /// Why `command` ("orb list") did not succeed, as a sentence for the user: what the system said, or that it timed
    /// out, or all that it printed (possibly nothing). None when it succeeded.
    std::optional<QString> failure(const QString &command) const;
};
