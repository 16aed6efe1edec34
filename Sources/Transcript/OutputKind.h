#pragma once

/// What a piece of the transcript is; the output pane colours it by this.
enum class OutputKind {
    out,  ///< the script's standard output
    err,  ///< standard error, of the script or of a machine's creation
    info, ///< the controller's own progress lines, and the standard output of a machine's creation
    ok,   ///< the exit-status line for status 0
    fail, ///< what stopped a run before or instead of running it, and the exit-status line for any other status
    warn, ///< stopped by the user, timed out, or a disposable machine that could not be deleted
};
