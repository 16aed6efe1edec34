#include "OrbCLI/ToolDirectories.h"

const std::vector<std::string> &OrbCLI::toolDirectories()
{
    static const std::vector<std::string> directories{"/opt/homebrew/bin", "/usr/local/bin",
                                                      "/Applications/OrbStack.app/Contents/MacOS/xbin"};
    return directories;
}

const std::vector<std::string> &OrbCLI::brewCandidates()
{
    static const std::vector<std::string> candidates{"/opt/homebrew/bin/brew", "/usr/local/bin/brew"};
    return candidates;
}
