#pragma once

#include "Transcript/OutputKind.h"

#include <QString>
#include <QUuid>

/// One piece of the transcript: all the text of one kind that came in a row. It grows while more of that kind arrives.
struct OutputSegment {
    QUuid id;
    QString text;
    OutputKind kind = OutputKind::out;
};
