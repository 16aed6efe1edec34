#pragma once

#include "Process/FileDescriptor.h"

#include <sys/types.h>

/// A descriptor for poll() that becomes readable when the child `pid` ends, and stays so. Closed when the system has
/// none to give (or the child is gone already): the caller then has to ask from time to time.
FileDescriptor openExitNotice(pid_t pid);
