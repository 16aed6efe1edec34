#include "OrbCLI/ToolDirectories.h"

const std::vector<std::string> &OrbCLI::toolDirectories()
{
    // Never destroyed: a tool may be started while the program is ending.
    static const auto *const directories = new std::vector<std::string>{
        "/opt/homebrew/bin", "/usr/local/bin", "/Applications/OrbStack.app/Contents/MacOS/xbin"};
    return *directories;
}

const std::vector<std::string> &OrbCLI::brewCandidates()
{
    static const std::vector<std::string> candidates{"/opt/homebrew/bin/brew", "/usr/local/bin/brew"};
    return candidates;
}
