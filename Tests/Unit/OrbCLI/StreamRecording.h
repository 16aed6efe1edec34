#pragma once

// Everything that one streamed child says, in the order in which the main thread hears it.

#include "OrbCLI/OrbCLI.h"
#include "Support/Waiting.h"
#include "Text/Utf8.h"

#include <QStringList>
#include <QThread>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

struct StreamRecording {
    struct Chunk {
        QString text;
        bool isError = false;
    };

    std::vector<Chunk> chunks;
    QString output;
    QString errors;
    int exits = 0;
    int status = -2;
    bool outputAfterExit = false;
    bool foreignThread = false;
    ProcessHandlePointer handle;       // what stream returned
    ProcessHandlePointer handleAtExit; // what onExit was given

    bool hasEnded() const { return exits > 0; }
    bool waitForEnd() const
    {
        return waitUntil([this] { return hasEnded(); });
    }
};

/// Starts a stream that is recorded; the recording lives as long as anyone needs it.
inline std::shared_ptr<StreamRecording> record(const QString &tool, const QStringList &arguments = {},
                                               const std::optional<QString> &input = std::nullopt,
                                               std::optional<double> timeLimit = std::nullopt)
{
    const auto recording = std::make_shared<StreamRecording>();
    const auto noteThread = [](StreamRecording &target) {
        target.foreignThread |= QThread::currentThread() != QCoreApplication::instance()->thread();
    };
    recording->handle = OrbCLI::stream(
        tool, arguments, input, timeLimit,
        [recording, noteThread](QUtf8StringView text, bool isError) {
            noteThread(*recording);
            recording->outputAfterExit |= recording->hasEnded();
            recording->chunks.push_back({Utf8::toQString(text), isError});
            (isError ? recording->errors : recording->output) += recording->chunks.back().text;
        },
        [recording, noteThread](int status, const ProcessHandlePointer &handle) {
            noteThread(*recording);
            ++recording->exits;
            recording->status = status;
            recording->handleAtExit = handle;
        });
    return recording;
}
