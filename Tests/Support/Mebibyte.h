#pragma once

#include <cstdint>

inline constexpr std::int64_t mebibyte = std::int64_t{1024} * 1024;
