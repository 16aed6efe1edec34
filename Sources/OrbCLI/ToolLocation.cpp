#include "OrbCLI/ToolLocation.h"

#include "OrbCLI/ToolDirectories.h"

#include <sys/stat.h>
#include <unistd.h>

#ifdef __APPLE__
#include <crt_externs.h>
#endif

namespace
{

char **processEnvironment()
{
#ifdef __APPLE__
    return *_NSGetEnviron();
#else
    return ::environ;
#endif
}

} // namespace

bool OrbCLI::isExecutableFile(const std::string &path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<QString> OrbCLI::find(const QString &name)
{
    for (const std::string &directory : toolDirectories()) {
        const std::string candidate = directory + '/' + name.toStdString();
        if (isExecutableFile(candidate))
            return QString::fromStdString(candidate);
    }
    return std::nullopt;
}

std::optional<QString> OrbCLI::findBrew()
{
    for (const std::string &candidate : brewCandidates())
        if (isExecutableFile(candidate))
            return QString::fromStdString(candidate);
    return std::nullopt;
}

std::map<std::string, std::string> OrbCLI::environment()
{
    std::map<std::string, std::string> variables;
    for (char **entry = processEnvironment(); entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const auto equals = text.find('=');
        // Of two variables with one name the first is the one that getenv sees, here and in the child.
        if (equals != std::string_view::npos)
            variables.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    const auto inherited = variables.try_emplace("PATH", "/usr/bin:/bin:/usr/sbin:/sbin").first;
    std::string path;
    for (const std::string &directory : toolDirectories())
        path += directory + ':';
    inherited->second.insert(0, path);
    return variables;
}
