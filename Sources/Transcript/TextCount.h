#pragma once

#include <QByteArrayView>

#include <cstdint>

/// How much text: the length of a piece, or a place in a text as the length of all that comes before it.
struct TextCount {
    std::int64_t bytes = 0;
    /// UTF-16 code units.
    std::int64_t utf16 = 0;
    std::int64_t lineFeeds = 0;

    /// Counts valid UTF-8, as fast as memory is read.
    static TextCount of(QByteArrayView text);

    TextCount &operator+=(const TextCount &other)
    {
        bytes += other.bytes;
        utf16 += other.utf16;
        lineFeeds += other.lineFeeds;
        return *this;
    }
    friend TextCount operator+(TextCount one, const TextCount &other) { return one += other; }
    friend TextCount operator-(const TextCount &one, const TextCount &other)
    {
        return {one.bytes - other.bytes, one.utf16 - other.utf16, one.lineFeeds - other.lineFeeds};
    }
    friend bool operator==(const TextCount &, const TextCount &) = default;
};
