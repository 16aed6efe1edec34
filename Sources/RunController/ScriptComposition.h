#pragma once

// What is sent to a machine's shell, and how it is announced. Pure functions.

#include <QString>
#include <QStringList>

#include <optional>

namespace ScriptComposition
{

/// "sh" for a distribution whose name holds "alpine" in any letter case, else "bash".
QString shellFor(const QString &distro);

/// The text in single quotes for a POSIX shell.
QString quoted(const QString &text);

/// The script, led by a line that enters `folder` in the machine (exit status 97 when that is impossible), and ended by
/// a line feed.
QString compose(const QString &script, const std::optional<QString> &folder);

/// The line that announces a run: "$ orb -m dev bash -s   (folder: /Users/ann/p)" and a line feed.
QString echoedCommand(const QString &machine, const QString &shell, const std::optional<QString> &folder);

/// The pieces of what the user typed as packages, parted at blanks and commas.
QStringList packagesIn(const QString &text);

/// At least one package, and none that a shell or an installer could read as anything but a name.
bool arePackageNamesValid(const QStringList &packages);

} // namespace ScriptComposition
