#include "OrbCLI/DeleteMachine.h"

#include "OrbCLI/OrbCLI.h"

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
