#pragma once

// Pipes to and from child processes. Where the systems differ, both ways are in Pipe.cpp.

#include "Process/FileDescriptor.h"

#include <cstddef>
#include <optional>

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

/// Opens a pipe that no child inherits by itself. Neither end is 0, 1 or 2, even where this program was started with
/// those closed: a child's own 0, 1 and 2 are made from these ends and must not overwrite one. Nothing, with errno
/// set, when the system refuses.
std::optional<Pipe> openPipe();

/// Makes reads and writes through this end return at once; the other end is not touched.
void makeNonBlocking(const FileDescriptor &end);

/// Asks for room for `size` bytes in the pipe; false when the system does not offer that.
bool enlargePipe(const FileDescriptor &end, std::size_t size);
