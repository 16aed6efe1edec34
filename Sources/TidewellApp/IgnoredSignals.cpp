#include "TidewellApp/IgnoredSignals.h"

#include <csignal>

IgnoredSignals::IgnoredSignals()
{
    // Writing a script to a child that has already exited must be a write error, not this program's end.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}
