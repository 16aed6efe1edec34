#pragma once

#include "Transcript/TextBlock.h"
#include "Transcript/TextStorage.h"

#include <cstdint>

/// A text that takes less memory than this loses no more of it: what is still to be packed only gets smaller, and is
/// then no more than may stay in memory.
inline std::int64_t mostAtRest(const TextStorage &storage)
{
    return storage.packedBytes + static_cast<std::int64_t>(storage.plainBlocks) * TextBlock::capacity;
}
