#pragma once

// The fixed places in which the outside tools live. A program supplies them when it links: the application links
// ToolDirectories.cpp, a test links its own, so that no option or variable can ever redirect the real program.

#include <string>
#include <vector>

namespace OrbCLI
{

/// The absolute directories searched for `orb` and `docker`, in order; also the head of every child's PATH.
const std::vector<std::string> &toolDirectories();

/// The full paths at which Homebrew's `brew` may be, in order.
const std::vector<std::string> &brewCandidates();

} // namespace OrbCLI
