// How much OrbCLI::run adds to running a program that does nothing, and whether the memory that this process holds
// matters: a plain fork would copy its page tables.
//
// StartingTools [ROUNDS]

#include "OrbCLI/OrbCLI.h"
#include "shared/Figures.h"
#include "shared/Measuring.h"

#include <QCoreApplication>

namespace
{

void runOnce(const QString &tool)
{
    QEventLoop loop;
    auto task = OrbCLI::run(tool, {}, std::nullopt, 60);
    auto quitting = task.then([&loop](const CLIResult &result) {
        if (result.status != 0)
            std::abort();
        loop.quit();
    });
    loop.exec();
}

double compare(const char *what, const std::string &program, int rounds)
{
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < rounds; ++round) {
        bare.push_back(secondsFor([&] { runBarely({program}, [](const char *, std::size_t) {}); }));
        ours.push_back(secondsFor([&] { runOnce(QString::fromStdString(program)); }));
    }
    printFigures(
        what,
        {{"bare_us", median(bare) * 1e6}, {"ours_us", median(ours) * 1e6}, {"ratio", median(ours) / median(bare)}});
    return median(ours);
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    const QCoreApplication application(argumentCount, arguments);
    const int rounds = argumentCount > 1 ? std::atoi(arguments[1]) : 400;
    const std::string program = ::access("/bin/true", X_OK) == 0 ? "/bin/true" : "/usr/bin/true";
    compare("first (warming up)", program, rounds / 4);
    const double before = compare("nothing held", program, rounds);
    std::vector<char> held(500 * 1024 * 1024);
    for (std::size_t place = 0; place < held.size(); place += 1024)
        held[place] = static_cast<char>(place);
    const double after = compare("500 MiB held", program, rounds);
    printFigures("500 MiB held against nothing held", {{"ratio", after / before}});
    return 0;
}
