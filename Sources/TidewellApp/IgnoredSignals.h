#pragma once

// Two signals that the whole process ignores: that of a broken pipe and that of a file which has grown too large. Both
// come as errors of the writing besides.

class IgnoredSignals
{
public:
    /// From now on, before anything is written to a pipe.
    IgnoredSignals();
};
