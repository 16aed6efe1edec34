#pragma once

// What the fuzz targets share. Each target holds the code to promises that can be said without it: a model that is
// simpler, a library that does the same, or a way back.

#include "Text/Utf8.h"
#include "Text/Utf8Repair.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// The entry that the fuzzer calls with one input after the other.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace Fuzzing
{

/// A broken promise ends the program, so that the fuzzer keeps the input.
inline void require(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

inline QByteArrayView bytes(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)};
}

/// The bytes as the tool runner hands them on: always valid.
inline QByteArray utf8(QByteArrayView bytes)
{
    return Utf8Repair::repaired(bytes).value_or(bytes.toByteArray());
}

inline QString text(QByteArrayView bytes)
{
    return Utf8::toQString(utf8(bytes));
}

} // namespace Fuzzing
