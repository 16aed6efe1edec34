#pragma once

// Where the outside tools are and what every child process gets as its environment. The user's own PATH is never
// searched: a program started from the Finder has almost none, and a tool must be the same whoever starts it.

#include <QString>

#include <map>
#include <optional>
#include <string>

namespace OrbCLI
{

/// The path of the tool `name` in the first tool directory that holds it as an executable file; nothing when none does.
/// Callers read nothing as "not installed". Any thread.
std::optional<QString> find(const QString &name);

/// The path of Homebrew's `brew`, or nothing. Any thread.
std::optional<QString> findBrew();

/// True when `path` exists, is a file and may be executed by the current user. Any thread.
bool isExecutableFile(const std::string &path);

/// The environment of a child: this process's own, with PATH led by the tool directories. Made afresh on every call,
/// as bytes, because a variable need not be valid text. Any thread.
std::map<std::string, std::string> environment();

} // namespace OrbCLI
