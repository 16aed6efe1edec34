#pragma once

// Tools that keep, byte for byte, what they were started with.

#include "Support/TestTools.h"

#include <QByteArrayList>
#include <QList>

#include <ostream>

struct RecordedCall {
    /// The tool's name and its arguments.
    QByteArrayList arguments;
    /// All that it could read on its standard input.
    QByteArray input;

    bool operator==(const RecordedCall &) const = default;
};

/// The call as a test writes it down.
RecordedCall recordedCall(const QStringList &arguments, const QByteArray &input = {});

void PrintTo(const RecordedCall &call, std::ostream *out);

/// `orb`, `docker` and `brew`. They may be started one after the other, not at the same time.
class RecordingTools : public TestTools
{
public:
    /// `body` is what each does after it has kept its arguments and its input; $1 is the first argument.
    explicit RecordingTools(const QString &body = {});

    /// The calls since the last time, oldest first.
    QList<RecordedCall> take();
};
