#pragma once

#include <QString>
#include <QUuid>

/// What a piece of the transcript is; the output pane colours it by this.
enum class OutputKind {
    out,  ///< the script's standard output
    err,  ///< standard error, of the script or of a machine's creation
    info, ///< the controller's own progress lines, and the standard output of a machine's creation
    ok,   ///< the exit-status line for status 0
    fail, ///< what stopped a run before or instead of running it, and the exit-status line for any other status
    warn, ///< stopped by the user, timed out, or a disposable machine that could not be deleted
};

/// One piece of the transcript: all the text of one kind that came in a row. It grows while more of that kind arrives.
struct OutputSegment {
    QUuid id;
    QString text;
    OutputKind kind = OutputKind::out;
};
