#include "OrbCLI/DeleteMachine.h"

#include "OrbCLI/OrbCLI.h"
#include "OrbCLI/ToolLocation.h"
#include "Process/ChildProcess.h"
#include "Process/FileDescriptor.h"

#include <fcntl.h>

using namespace Qt::StringLiterals;

QCoro::Task<CLIResult> OrbCLI::deleteMachine(QString orb, QString name, double timeLimit)
{
    const QStringList forced{u"delete"_s, u"-f"_s, name};
    CLIResult result = co_await run(orb, forced, std::nullopt, timeLimit, endOfLog);
    if (result.succeeded())
        co_return result;
    const QStringList confirmed{u"delete"_s, name};
    co_return co_await run(orb, confirmed, u"y\n"_s, timeLimit, endOfLog);
}

void OrbCLI::beginDeletion(const QString &orb, const QString &name)
{
    // Not pipes, which would be broken with this program, and the deletion with them.
    const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    ChildProcess::StandardStreams streams;
    streams.output = nowhere.number();
    streams.errorOutput = nowhere.number();
    ChildProcess().start(orb.toStdString(), {"delete", "-f", name.toStdString()}, environment(), streams);
}
