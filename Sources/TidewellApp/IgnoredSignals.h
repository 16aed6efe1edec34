#pragma once

// Two signals that the whole process ignores: that of a broken pipe and that of a file which has grown too large. Both
// come as errors of the writing besides.

namespace IgnoredSignals
{

/// To be called before anything is written to a pipe, so before anything else.
void ignore();

} // namespace IgnoredSignals
