#pragma once

// The seed of a random test: every such test tells it, and can be made to take another.

#include <QtGlobal>

#include <iostream>

/// The number in the variable TIDEWELL_SEED, or `usual` without one; prints it.
inline unsigned seedOr(unsigned usual)
{
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue("TIDEWELL_SEED", &isGiven);
    const unsigned seed = isGiven ? static_cast<unsigned>(given) : usual;
    std::cout << "TIDEWELL_SEED=" << static_cast<int>(seed) << std::endl;
    return seed;
}
