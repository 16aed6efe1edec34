#pragma once

// The names of the machines that runs make for themselves, written down before such a machine is made and struck out
// once it is gone. A name that is found at a start is of a run that was cut off, by a kill, say, or with the computer's
// power; or of one that goes on, or is just being ended, in another program.
//
// Each name is an empty file of its own, locked as long as its run goes on. The system lets go of the lock with the
// process, however that ends, so several programs at once never take each other's names for left behind. Failures are
// silent: a run is worth more than the note of its machine.

#include "Process/FileDescriptor.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class DisposableMachines
{
public:
    /// Keeps no name.
    DisposableMachines() = default;
    /// Keeps the names in the folder "Tidewell/Disposable machines" of `supportFolder`; without one it keeps none.
    explicit DisposableMachines(const std::optional<QString> &supportFolder);

    /// Writes a name down, to last over a loss of power. Its run goes on as long as what is returned stays open.
    [[nodiscard]] FileDescriptor writeDown(const QString &name) const;

    /// Strikes a name out; nothing when it is not written down.
    void strikeOut(const QString &name) const;

    /// All names that are written down, in their own order, whether or not their runs go on.
    QStringList names() const;

    struct LeftBehind {
        QString name;
        QDateTime writtenDown;
    };
    /// The names whose runs go on in no program, in their own order.
    QList<LeftBehind> leftBehind() const;

private:
    std::optional<QString> m_folder;
};
