#pragma once

// One window a user: whoever starts Tidewell a second time over the same support folder sees the first window come
// forward. A named pipe in the folder is open for reading as long as the first instance lives and has not been told to
// end. The system knows that, and forgets it however the instance ends, so nothing stale can keep a start from going
// on. Where there can be no such pipe, every instance is the first. (On a Mac the system itself starts an application
// once, unless told otherwise.)

#include "Process/FileDescriptor.h"

#include <QObject>

#include <optional>

class FirstInstance : public QObject
{
    Q_OBJECT

public:
    /// Uses the pipe "running" in `folder`, which is made when it is missing. Without a folder this is the first
    /// instance. There must be a QCoreApplication.
    explicit FirstInstance(const std::optional<QString> &folder);

    /// False when another instance was there, which has been told of this start: end without a window.
    bool isFirst() const { return m_isFirst; }

Q_SIGNALS:
    /// Another instance was started, and ends.
    void startedAgain();

private:
    void listen(const QByteArray &path);

    FileDescriptor m_reading;
    /// Open, so that the end of another writer is not the end of the pipe.
    FileDescriptor m_writing;
    bool m_isFirst = true;
};
