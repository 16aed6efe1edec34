// What the user types as names, images, ports and packages: taken or refused as the rules say, and told so. The fields
// of the input end at a byte that no text holds. The tools are there but cannot be started.

#include "ContainerStore/ContainerStore.h"
#include "Fuzzing.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "Support/NameRules.h"
#include "Support/TestTools.h"

#include <QCoreApplication>

using Fuzzing::require;
using namespace Qt::StringLiterals;

namespace
{

void checkMachineName(const QString &name)
{
    MachineStore store;
    store.create(Distro::debian, name);
    const bool isTaken = NameRules::isMachineName(name);
    require(store.busy() == isTaken, "a machine is created exactly where its name keeps the rule");
    require(store.log() == (isTaken ? u"$ orb create debian "_s + name + u'\n'
                                    : u"Use lowercase letters, digits and dashes for the name.\n"_s),
            "and the log tells which");
}

void checkContainer(const QString &image, const QString &name, const QString &ports)
{
    ContainerStore store;
    store.runContainer(image, name, ports);
    const QString refusal = NameRules::refusalOfContainer(image, name, ports);
    require(store.busy() == refusal.isEmpty(), "a container is started exactly where its texts keep the rules");
    require(store.message() == (refusal.isEmpty()
                                    ? u"Running "_s + image.trimmed() + u"… (pulling the image can take a while)"_s
                                    : refusal),
            "and the message tells which");
}

void checkPackages(const QString &packages)
{
    RunController run;
    run.installPackages(packages, u"box"_s, u"debian"_s, true, nullptr);
    require(run.isRunning() == NameRules::arePackages(packages),
            "packages are installed exactly where all keep the rule");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argumentCount, char ***arguments)
{
    static QCoreApplication application(*argumentCount, *arguments);
    static TestTools tools;
    for (const QString &name : {u"orb"_s, u"docker"_s}) {
        tools.addTool(name, u":"_s);
        tools.setInterpreter(name, u"/nonexistent"_s);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QList<QByteArray> fields = Fuzzing::bytes(data, size).toByteArray().split('\xff');
    const auto field = [&fields](int index) { return Fuzzing::text(fields.value(index)); };
    checkMachineName(field(0));
    checkContainer(field(1), field(2), field(3));
    checkPackages(field(4));
    QCoreApplication::processEvents(); // what could not be started says so
    return 0;
}
