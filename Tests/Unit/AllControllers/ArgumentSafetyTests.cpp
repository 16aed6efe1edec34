// What a tool receives is, byte for byte, the list that belongs to the operation, whatever the texts in it hold; and
// what breaks a rule for names reaches no tool.

#include "ContainerStore/ContainerStore.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "SetupController/SetupController.h"
#include "Support/HostileTexts.h"
#include "Support/NameRules.h"
#include "Support/RecordingTools.h"
#include "Support/Seed.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace
{

using Calls = QList<RecordedCall>;

class ArgumentSafety : public testing::Test
{
protected:
    static constexpr int rounds = 40;

    /// The call, or none where the system could only pass on a part of it.
    static Calls call(const QStringList &arguments, const QByteArray &input = {})
    {
        return arguments.join(u' ').contains(QChar(0)) ? Calls() : Calls{recordedCall(arguments, input)};
    }

    static void waitUntilOver(const RunController &run)
    {
        ASSERT_TRUE(waitUntil([&run] { return !run.isRunning(); }));
    }

    HostileTexts texts{seedOr(std::random_device()() % 100'000)}; // other texts each time
    const Calls machineList = call({u"orb"_s, u"list"_s, u"-f"_s, u"json"_s}) + call({u"orb"_s, u"list"_s});
    const Calls containerList = call({u"docker"_s, u"ps"_s, u"-a"_s, u"--format"_s, u"{{json .}}"_s});
    HistoryStore history{std::nullopt};
    RunJob job{.script = u"true"_s,
               .label = u"a label"_s,
               .machine = u"box"_s,
               .distro = u"debian"_s,
               .folder = std::nullopt,
               .timeoutEnabled = true};
};

/// As a shell wants it, said letter by letter.
QByteArray inSingleQuotes(const QByteArray &text)
{
    QByteArray quoted("'");
    for (const char byte : text)
        quoted += byte == '\'' ? QByteArray("'\\''") : QByteArray(1, byte);
    return quoted + '\'';
}

} // namespace

TEST_F(ArgumentSafety, AMachineIsCreatedByExactlyItsNameOrNotAtAll)
{
    RecordingTools tools;
    MachineStore store;
    int created = 0;
    for (int round = 0; round < 2 * rounds; ++round) {
        const QString name = texts.nearly(u"abcxyz0129-", 33);
        const Distro distro = allDistros[static_cast<std::size_t>(texts.below(allDistros.size()))];
        ASSERT_TRUE(waitFor(store.create(distro, name)));
        const bool isAllowed = NameRules::isMachineName(name);
        created += isAllowed ? 1 : 0;
        EXPECT_EQ(tools.take(),
                  isAllowed ? call({u"orb"_s, u"create"_s, rawValue(distro), name}) + machineList : Calls());
    }
    EXPECT_GT(created, 0);
    EXPECT_LT(created, 2 * rounds);
}

TEST_F(ArgumentSafety, AMachineIsStartedStoppedAndDeletedByExactlyItsName)
{
    RecordingTools tools(u"[ \"$1\" != delete ]"_s); // no deletion succeeds, so each is tried a second time
    MachineStore store;
    for (int round = 0; round < rounds; ++round) {
        const QString name = texts.text();
        for (const QString &verb : {u"start"_s, u"stop"_s}) {
            ASSERT_TRUE(waitFor(store.simple({verb, name})));
            EXPECT_EQ(tools.take(), call({u"orb"_s, verb, name}) + machineList);
        }
        ASSERT_TRUE(waitFor(store.remove(name)));
        EXPECT_EQ(tools.take(), call({u"orb"_s, u"delete"_s, u"-f"_s, name}) +
                                    call({u"orb"_s, u"delete"_s, name}, "y\n") + machineList);
    }
}

TEST_F(ArgumentSafety, AContainerIsActedOnByExactlyItsName)
{
    RecordingTools tools;
    ContainerStore store;
    for (int round = 0; round < rounds; ++round) {
        const ContainerInfo container{texts.text(), texts.text(), texts.text(), texts.text(), texts.text(), {}};
        for (const QString &verb : {u"start"_s, u"stop"_s}) {
            ASSERT_TRUE(waitFor(store.action(verb, container)));
            EXPECT_EQ(tools.take(), call({u"docker"_s, verb, container.name}) + containerList);
        }
        ASSERT_TRUE(waitFor(store.action(u"rm"_s, container)));
        EXPECT_EQ(tools.take(), call({u"docker"_s, u"rm"_s, u"-f"_s, container.name}) + containerList);
        ASSERT_TRUE(waitFor(store.logs(container)));
        EXPECT_EQ(tools.take(), call({u"docker"_s, u"logs"_s, u"--tail"_s, u"300"_s, container.name}));
    }
}

TEST_F(ArgumentSafety, AContainerIsMadeOfExactlyWhatWasTypedOrNotAtAll)
{
    RecordingTools tools;
    ContainerStore store;
    int started = 0;
    for (int round = 0; round < 4 * rounds; ++round) {
        const QString image = texts.nearly(u"abzAZ09._/:@-", 30);
        const QString name = texts.below(2) == 0 ? QString() : texts.nearly(u"abzAZ09_.-", 20);
        QString ports;
        for (int count = texts.below(3); count > 0; --count)
            ports += texts.below(2) == 0 ? u"127.0.0.1:80%1:80/udp, "_s.arg(count) : texts.nearly(u"0189", 5) + u',';
        ASSERT_TRUE(waitFor(store.runContainer(image, name, ports)));
        if (!NameRules::refusalOfContainer(image, name, ports).isEmpty()) {
            EXPECT_EQ(tools.take(), Calls());
            continue;
        }
        QStringList arguments{u"docker"_s, u"run"_s, u"-d"_s};
        if (!name.trimmed().isEmpty())
            arguments << u"--name"_s << name.trimmed();
        for (const QString &port : NameRules::pieces(ports))
            arguments << u"-p"_s << port;
        arguments << image.trimmed();
        EXPECT_EQ(tools.take(), call(arguments) + containerList);
        ++started;
    }
    EXPECT_GT(started, 0);
    EXPECT_LT(started, 4 * rounds);
}

TEST_F(ArgumentSafety, AShellInAMachineReadsExactlyTheScript)
{
    RecordingTools tools;
    RunController run;
    for (int round = 0; round < 2 * rounds; ++round) {
        job.script = texts.text() + texts.text();
        job.machine = texts.text();
        job.distro = round % 3 == 0 ? u"Alpine"_s : texts.text();
        job.folder = round % 2 == 0 ? std::nullopt : std::optional(u"/Users/"_s + texts.text());
        run.start(job, &history);
        waitUntilOver(run);

        QByteArray script;
        if (job.folder) {
            const QByteArray folder = job.folder->toUtf8();
            script = "cd -- " + inSingleQuotes(folder) + " 2>/dev/null || cd -- " +
                     inSingleQuotes("/mnt/mac" + folder) +
                     " || { echo 'Cannot open the shared folder in the machine' >&2; exit 97; }\n";
        }
        script += job.script.toUtf8();
        script += script.endsWith('\n') ? "" : "\n";
        const QString shell = round % 3 == 0 ? u"sh"_s : u"bash"_s;
        EXPECT_EQ(tools.take(),
                  job.machine.isEmpty() ? Calls() : call({u"orb"_s, u"-m"_s, job.machine, shell, u"-s"_s}, script));
    }
}

TEST_F(ArgumentSafety, ADisposableMachineHasItsOwnNameFromCreationToDeletion)
{
    RecordingTools tools;
    RunController run;
    job.disposable = true;
    for (int round = 0; round < rounds; ++round) {
        job.script = texts.text() + u'\n';
        job.machine = texts.text(); // of no matter
        job.distro = rawValue(allDistros[static_cast<std::size_t>(texts.below(allDistros.size()))]);
        run.start(job, &history);
        waitUntilOver(run);

        const Calls calls = tools.take();
        ASSERT_FALSE(calls.isEmpty());
        const QString name = QString::fromUtf8(calls[0].arguments.last());
        ASSERT_EQ(name.size(), 10);
        EXPECT_TRUE(name.startsWith(u"sbx-"_s));
        EXPECT_TRUE(NameRules::isMachineName(name));
        const QString shell = job.distro == u"alpine"_s ? u"sh"_s : u"bash"_s;
        EXPECT_EQ(calls, call({u"orb"_s, u"create"_s, job.distro, name}) +
                             call({u"orb"_s, u"-m"_s, name, shell, u"-s"_s}, job.script.toUtf8()) +
                             call({u"orb"_s, u"delete"_s, u"-f"_s, name}));
    }
}

TEST_F(ArgumentSafety, PackagesAreInstalledByExactlyTheirNamesOrNotAtAll)
{
    RecordingTools tools;
    RunController run;
    int installed = 0;
    for (int round = 0; round < 2 * rounds; ++round) {
        QString packages;
        for (int count = texts.below(3); count >= 0; --count)
            packages += texts.nearly(u"abzAZ09.+_:=~-", 12) + (texts.below(2) == 0 ? u' ' : u',');
        const bool isAlpine = texts.below(2) == 0;
        run.installPackages(packages, u"box"_s, isAlpine ? u"alpine"_s : u"Ubuntu"_s, true, &history);
        waitUntilOver(run);
        if (!NameRules::arePackages(packages)) {
            EXPECT_EQ(tools.take(), Calls());
            continue;
        }
        const QByteArray names = NameRules::pieces(packages).join(u' ').toUtf8();
        const QByteArray install = isAlpine ? QByteArray("$S apk add ")
                                            : QByteArray("$S env DEBIAN_FRONTEND=noninteractive apt-get update && "
                                                         "$S env DEBIAN_FRONTEND=noninteractive apt-get install -y ");
        EXPECT_EQ(tools.take(),
                  call({u"orb"_s, u"-m"_s, u"box"_s, isAlpine ? u"sh"_s : u"bash"_s, u"-s"_s},
                       "if [ \"$(id -u)\" = 0 ]; then S=\"\"; else S=sudo; fi\n" + install + names + '\n'));
        ++installed;
    }
    EXPECT_GT(installed, 0);
    EXPECT_LT(installed, 2 * rounds);
}

TEST_F(ArgumentSafety, OrbStackIsInstalledStartedAskedAndStoppedByFixedLists)
{
    RecordingTools tools(u"echo Running"_s);
    SetupController setup;
    const auto waitUntilFree = [&setup] { return waitUntil([&setup] { return !setup.busy(); }); };
    const Calls status = call({u"orb"_s, u"status"_s});
    const Calls start = call({u"orb"_s, u"start"_s}) + status;
    ASSERT_TRUE(waitFor(setup.refresh()));
    EXPECT_EQ(tools.take(), status);
    setup.start();
    ASSERT_TRUE(waitUntilFree());
    EXPECT_EQ(tools.take(), start);
    ASSERT_TRUE(waitFor(setup.stop()));
    EXPECT_EQ(tools.take(), call({u"orb"_s, u"stop"_s}) + status);
    ASSERT_TRUE(waitFor(setup.install()));
    EXPECT_EQ(tools.take(), call({u"brew"_s, u"install"_s, u"--cask"_s, u"orbstack"_s}) + start);
}
