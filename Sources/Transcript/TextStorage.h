#pragma once

// How much of the output's text is kept where. The values are the application's; tests make them smaller.

#include <cstddef>
#include <cstdint>
#include <string>

struct TextStorage {
    static constexpr std::int64_t mebibyte = std::int64_t{1024} * 1024;

    /// The folder for large temporary files.
    static std::string temporaryFolder();

    /// So many blocks at the end stay as they are: what a run of common size prints is never packed.
    std::size_t plainBlocks = 1024;
    /// Bytes of packed blocks that stay in memory; older ones are filed.
    std::int64_t packedBytes = 192 * mebibyte;
    /// So many bytes more wait for a slow disk. What comes then takes the place of what has waited longest.
    std::int64_t waitingBytes = 128 * mebibyte;
    std::string folder = temporaryFolder();
    /// The free space of the disk that is never taken, in bytes and as a share of all of it.
    std::int64_t diskReserve = 5120 * mebibyte;
    double diskReserveShare = 0.1;
};
