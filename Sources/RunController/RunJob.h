#pragma once

#include <QString>

#include <optional>

/// One request to run a script.
struct RunJob {
    QString script;
    /// What the history shows as the command.
    QString label;
    /// The machine's name, possibly empty; ignored for a disposable job.
    QString machine;
    /// The machine's distribution, or the one to create when disposable.
    QString distro;
    /// Create a fresh machine for this run and delete it afterwards.
    bool disposable = false;
    /// Absolute path of the Mac folder to work in.
    std::optional<QString> folder;
    /// Stop the script after 600 seconds.
    bool timeoutEnabled = true;
};
