#include "ContainerStore/ContainerStore.h"
#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

const ContainerInfo web{u"0a1b"_s, u"web"_s, u"nginx"_s, u"running"_s, u"Up 2 minutes"_s, u"80/tcp"_s};

const QString webLine =
    uR"({"ID":"0a1b","Names":"web","Image":"nginx","State":"running","Status":"Up 2 minutes","Ports":"80/tcp"})"_s;

const QString listCall = u"<ps><-a><--format><{{json .}}>"_s;

// A docker whose `ps` prints one container and whose other verbs do what `body` says.
QString dockerWith(const QString &body)
{
    return u"if [ \"$1\" = ps ]; then printf '%s\\n' '"_s + webLine + u"'; exit 0; fi\n"_s + body;
}

class ContainerStoreTest : public testing::Test
{
protected:
    bool untilIdle()
    {
        return waitUntil([this] { return !store.busy(); });
    }

    // Waits until the operation and the listing that follows it are over.
    bool untilListed()
    {
        return waitUntil([this] { return !store.busy() && !store.containers().isEmpty(); });
    }

    void write(const QString &name, const QByteArray &content)
    {
        QFile file(tools.path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    TestTools tools;
    ContainerStore store;
};

using ContainerStoreRefresh = ContainerStoreTest;
using ContainerStoreAction = ContainerStoreTest;
using ContainerStoreLogs = ContainerStoreTest;
using ContainerStoreRun = ContainerStoreTest;

} // namespace

TEST_F(ContainerStoreRefresh, StartsEmptyAndIdle)
{
    EXPECT_TRUE(store.containers().isEmpty());
    EXPECT_EQ(store.error(), std::nullopt);
    EXPECT_FALSE(store.busy());
    EXPECT_EQ(store.message(), QString());
    EXPECT_EQ(store.logTitle(), QString());
    EXPECT_EQ(store.logText(), QString());
    EXPECT_FALSE(store.showLogs());
}

TEST_F(ContainerStoreRefresh, GivesEachToolItsTime)
{
    const ContainerTimeLimits seconds;
    EXPECT_EQ(seconds.list, 10);
    EXPECT_EQ(seconds.logs, 10);
    EXPECT_EQ(seconds.action, 60);
    EXPECT_EQ(seconds.run, 600);
}

TEST_F(ContainerStoreRefresh, ListsAllContainersWithTheExactArguments)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(tools.calls(u"docker"_s), QStringList{listCall});
    EXPECT_EQ(store.containers(), QList{web});
    EXPECT_EQ(store.error(), std::nullopt);
}

TEST_F(ContainerStoreRefresh, GivesTheToolNoInput)
{
    tools.addTool(u"docker"_s, u"cat > '"_s + tools.path(u"input"_s) + u"'; exit 0"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    QFile input(tools.path(u"input"_s));
    ASSERT_TRUE(input.open(QIODevice::ReadOnly));
    EXPECT_TRUE(input.readAll().isEmpty());
}

TEST_F(ContainerStoreRefresh, TellsAChangedListOnceAndAnUnchangedOneNever)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    QSignalSpy containersChanged(&store, &ContainerStore::containersChanged);
    QSignalSpy errorChanged(&store, &ContainerStore::errorChanged);
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(containersChanged.count(), 1);
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(containersChanged.count(), 1);
    EXPECT_EQ(errorChanged.count(), 0);
}

TEST_F(ContainerStoreRefresh, EmptiesTheListOnlyWhenDockerIsMissing)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ASSERT_TRUE(waitFor(store.refresh()));
    tools.removeTool(u"docker"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_TRUE(store.containers().isEmpty());
    EXPECT_EQ(store.error(),
              u"The docker command was not found. Install OrbStack (it provides docker) and start it."_s);
}

TEST_F(ContainerStoreRefresh, KeepsTheListBesideTheErrorOfAFailingDocker)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ASSERT_TRUE(waitFor(store.refresh()));
    tools.addTool(u"docker"_s, u"echo '  half a list '; echo 'Cannot connect to the Docker daemon.' >&2; exit 1"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.containers(), QList{web});
    EXPECT_EQ(store.error(), u"half a list\nCannot connect to the Docker daemon."_s);
}

TEST_F(ContainerStoreRefresh, ReportsAFailureWithoutAnyOutputAsAnEmptyError)
{
    tools.addTool(u"docker"_s, u"exit 3"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.error(), QString());
    EXPECT_TRUE(store.error().has_value());
}

TEST_F(ContainerStoreRefresh, ClearsTheErrorAfterAGoodListing)
{
    tools.addTool(u"docker"_s, u"exit 1"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    tools.addTool(u"docker"_s, u"exit 0"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.error(), std::nullopt);
    EXPECT_TRUE(store.containers().isEmpty());
}

TEST_F(ContainerStoreRefresh, KeepsTheListWhenDockerCannotBeStarted)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ASSERT_TRUE(waitFor(store.refresh()));
    const QString docker = tools.addTool(u"docker"_s, QString());
    QFile file(docker);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("#!/nonexistent/interpreter\n");
    file.close();
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.containers(), QList{web});
    ASSERT_TRUE(store.error().has_value());
    EXPECT_FALSE(store.error()->isEmpty());
    EXPECT_FALSE(store.error()->contains(u"Could not start"_s));
}

TEST_F(ContainerStoreRefresh, KeepsTheListWhenTheListingTimesOut)
{
    ContainerStore impatient({.list = 0.3});
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ASSERT_TRUE(waitFor(impatient.refresh()));
    tools.addTool(u"docker"_s, u"exec sleep 60"_s);
    ASSERT_TRUE(waitFor(impatient.refresh()));
    EXPECT_EQ(impatient.containers(), QList{web});
    EXPECT_EQ(impatient.error(), u"docker ps timed out. Is OrbStack running?"_s);
}

TEST_F(ContainerStoreRefresh, ReportsTheTimeOutAlsoOfADockerThatThenEndsWell)
{
    ContainerStore impatient({.list = 0.3});
    tools.addTool(u"docker"_s, u"trap 'exit 0' TERM; while :; do sleep 0.05; done"_s);
    ASSERT_TRUE(waitFor(impatient.refresh()));
    EXPECT_EQ(impatient.error(), u"docker ps timed out. Is OrbStack running?"_s);
}

TEST_F(ContainerStoreRefresh, LetsTheLastOfTwoToFinishDecide)
{
    // The first call waits for a file that the test makes after the second has ended.
    tools.addTool(u"docker"_s, u"if mkdir '"_s + tools.path(u"first"_s) + u"' 2>/dev/null; then\n"_s +
                                   u"while [ ! -e '"_s + tools.path(u"go"_s) + u"' ]; do sleep 0.02; done\n"_s +
                                   u"echo '{\"ID\":\"slow\"}'\nelse echo '{\"ID\":\"quick\"}'; fi"_s);
    bool slowDone = false;
    store.refresh().then([&slowDone] { slowDone = true; });
    ASSERT_TRUE(waitUntil([this] { return QFile::exists(tools.path(u"first"_s)); }));
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.containers().value(0).id, u"quick"_s);
    write(u"go"_s, "");
    ASSERT_TRUE(waitUntil([&slowDone] { return slowDone; }));
    EXPECT_EQ(store.containers().value(0).id, u"slow"_s);
}

TEST_F(ContainerStoreRefresh, ReadsTheLinesBetweenWarnings)
{
    tools.addTool(u"docker"_s, u"echo 'WARNING: bad config'; printf '%s\\n' '"_s + webLine +
                                   u"'; echo 'level=warning msg=x'; echo '{\"ID\":\"2\",\"Platform\":null}'; "_s +
                                   u"echo '{\"Platform\":{\"os\":\"linux\"},\"ID\":\"3\"}'; echo noise >&2"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    ASSERT_EQ(store.containers().size(), 3);
    EXPECT_EQ(store.containers()[0], web);
    EXPECT_EQ(store.containers()[1].id, u"2"_s);
    EXPECT_EQ(store.containers()[2].id, u"3"_s);
    EXPECT_EQ(store.error(), std::nullopt);
}

TEST_F(ContainerStoreRefresh, ReadsALineOfTenMegabytesAndTheOneAfterIt)
{
    write(u"list"_s, "{\"ID\":\"long\",\"Labels\":\"" + QByteArray(10000000, 'l') + "\"}\n{\"ID\":\"short\"}\n");
    tools.addTool(u"docker"_s, u"cat '"_s + tools.path(u"list"_s) + u"'"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    ASSERT_EQ(store.containers().size(), 2);
    EXPECT_EQ(store.containers()[1].id, u"short"_s);
}

TEST_F(ContainerStoreRefresh, ListsFiveThousandContainers)
{
    QByteArray lines;
    for (int number = 0; number < 5000; ++number)
        lines += "{\"ID\":\"id" + QByteArray::number(number) + "\",\"Labels\":\"" + QByteArray(300, 'l') + "\"}\n";
    write(u"list"_s, lines);
    tools.addTool(u"docker"_s, u"cat '"_s + tools.path(u"list"_s) + u"'"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    ASSERT_EQ(store.containers().size(), 5000);
    EXPECT_EQ(store.containers().last().id, u"id4999"_s);
}

TEST_F(ContainerStoreRefresh, MayRunDuringAnActionAndTouchesNeitherBusyNorMessage)
{
    tools.addTool(u"docker"_s, dockerWith(u"while [ ! -e '"_s + tools.path(u"go"_s) + u"' ]; do sleep 0.02; done"_s));
    store.runContainer(u"nginx"_s, QString(), QString());
    const QString message = store.message();
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.containers(), QList{web});
    EXPECT_TRUE(store.busy());
    EXPECT_EQ(store.message(), message);
    write(u"go"_s, "");
    EXPECT_TRUE(untilIdle());
}

TEST_F(ContainerStoreRefresh, OutlivesAStoreThatIsGoneBeforeTheToolEnds)
{
    tools.addTool(u"docker"_s, u"sleep 0.2; touch '"_s + tools.path(u"done"_s) + u"'"_s);
    auto shortLived = std::make_unique<ContainerStore>();
    shortLived->refresh();
    shortLived->action(u"start"_s, web);
    shortLived->logs(web);
    shortLived.reset();
    EXPECT_TRUE(waitUntil([this] { return QFile::exists(tools.path(u"done"_s)); }));
    QTest::qWait(0);
}

TEST_F(ContainerStoreAction, RunsStartAndStopWithTheNameOnlyAndThenLists)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    for (const QString &verb : {u"start"_s, u"stop"_s}) {
        store.action(verb, web);
        EXPECT_TRUE(store.busy());
        ASSERT_TRUE(untilIdle());
        EXPECT_EQ(store.message(), QString());
    }
    ASSERT_TRUE(waitUntil([this] { return tools.calls(u"docker"_s).size() == 4; }));
    EXPECT_EQ(tools.calls(u"docker"_s)[0], u"<start><web>"_s);
    EXPECT_TRUE(tools.calls(u"docker"_s).contains(u"<stop><web>"_s));
    ASSERT_TRUE(untilListed());
}

TEST_F(ContainerStoreAction, RemovesByForce)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    store.action(u"rm"_s, web);
    ASSERT_TRUE(untilListed());
    EXPECT_EQ(tools.calls(u"docker"_s), (QStringList{u"<rm><-f><web>"_s, listCall}));
}

TEST_F(ContainerStoreAction, TellsAFailureWithAllThatDockerPrinted)
{
    tools.addTool(u"docker"_s, dockerWith(u"echo ' out '; echo 'No such container: web' >&2; exit 1"_s));
    for (const QString &verb : {u"start"_s, u"stop"_s, u"rm"_s}) {
        store.action(verb, web);
        ASSERT_TRUE(untilIdle());
        EXPECT_EQ(store.message(), u"docker "_s + verb + u" failed: out\nNo such container: web"_s);
    }
}

TEST_F(ContainerStoreAction, ClearsTheLastMessageWhenItSucceeds)
{
    tools.addTool(u"docker"_s, dockerWith(u"[ \"$1\" = start ]"_s));
    store.action(u"stop"_s, web);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(store.message(), u"docker stop failed: "_s);
    store.action(u"start"_s, web);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(store.message(), QString());
}

TEST_F(ContainerStoreAction, TellsATimeOutEvenWhenDockerThenEndsWell)
{
    ContainerStore impatient({.action = 0.3});
    tools.addTool(u"docker"_s, dockerWith(u"trap 'exit 0' TERM; echo waiting; while :; do sleep 0.05; done"_s));
    impatient.action(u"stop"_s, web);
    ASSERT_TRUE(waitUntil([&impatient] { return !impatient.busy(); }));
    EXPECT_EQ(impatient.message(), u"docker stop failed: waiting"_s);
}

TEST_F(ContainerStoreAction, TellsADockerThatCannotBeStarted)
{
    QFile file(tools.addTool(u"docker"_s, QString()));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("#!/nonexistent/interpreter\n");
    file.close();
    store.action(u"start"_s, web);
    ASSERT_TRUE(untilIdle());
    EXPECT_TRUE(store.message().startsWith(u"docker start failed: Could not start docker: "_s));
}

TEST_F(ContainerStoreAction, DoesNothingWithoutDocker)
{
    QSignalSpy busyChanged(&store, &ContainerStore::busyChanged);
    store.action(u"start"_s, web);
    store.logs(web);
    store.runContainer(u"-not an image-"_s, QString(), QString());
    QTest::qWait(0);
    EXPECT_EQ(busyChanged.count(), 0);
    EXPECT_EQ(store.message(), QString());
    EXPECT_FALSE(store.showLogs());
}

TEST_F(ContainerStoreAction, IgnoresASecondRequestWhileOneIsUnderWay)
{
    tools.addTool(u"docker"_s, dockerWith(u"while [ ! -e '"_s + tools.path(u"go"_s) + u"' ]; do sleep 0.02; done"_s));
    store.action(u"stop"_s, web);
    store.action(u"stop"_s, web);
    store.action(u"rm"_s, web);
    store.runContainer(u"nginx"_s, QString(), QString());
    store.runContainer(u"-"_s, QString(), QString());
    EXPECT_EQ(store.message(), QString());
    write(u"go"_s, "");
    ASSERT_TRUE(untilListed());
    EXPECT_EQ(tools.calls(u"docker"_s), (QStringList{u"<stop><web>"_s, listCall}));
}

TEST_F(ContainerStoreAction, IsIdleBeforeTheListingThatFollows)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    bool emptyWhenIdle = false;
    QObject::connect(&store, &ContainerStore::busyChanged, &store, [this, &emptyWhenIdle] {
        if (!store.busy())
            emptyWhenIdle = store.containers().isEmpty();
    });
    store.action(u"start"_s, web);
    ASSERT_TRUE(untilListed());
    EXPECT_TRUE(emptyWhenIdle);
}

TEST_F(ContainerStoreAction, PassesANameOfAnyKindAsOneArgument)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ContainerInfo odd = web;
    odd.name = u"a b'$(x)\";ü"_s;
    store.action(u"start"_s, odd);
    ASSERT_TRUE(untilListed());
    EXPECT_EQ(tools.calls(u"docker"_s)[0], u"<start><a b'$(x)\";ü>"_s);
}

TEST_F(ContainerStoreLogs, ShowsTheLastThreeHundredLinesOfBothStreams)
{
    tools.addTool(u"docker"_s, u"echo 'to out'; echo 'to err' >&2"_s);
    store.logs(web);
    EXPECT_FALSE(store.busy());
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    EXPECT_EQ(tools.calls(u"docker"_s), QStringList{u"<logs><--tail><300><web>"_s});
    EXPECT_EQ(store.logTitle(), u"web"_s);
    EXPECT_EQ(store.logText(), u"to out\nto err"_s);
}

TEST_F(ContainerStoreLogs, SaysSoWhenThereIsNoOutput)
{
    tools.addTool(u"docker"_s, u"printf ' \\n\\n '"_s);
    store.logs(web);
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    EXPECT_EQ(store.logText(), u"(no log output)"_s);
}

TEST_F(ContainerStoreLogs, ShowsAFailureInTheSheet)
{
    tools.addTool(u"docker"_s, u"echo 'No such container: web' >&2; exit 1"_s);
    store.logs(web);
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    EXPECT_EQ(store.logTitle(), u"web"_s);
    EXPECT_EQ(store.logText(), u"Could not read logs: No such container: web"_s);
}

TEST_F(ContainerStoreLogs, ShowsATimeOutInTheSheet)
{
    ContainerStore impatient({.logs = 0.3});
    tools.addTool(u"docker"_s, u"echo part; exec sleep 60"_s);
    impatient.logs(web);
    ASSERT_TRUE(waitUntil([&impatient] { return impatient.showLogs(); }));
    EXPECT_EQ(impatient.logText(), u"Could not read logs: part"_s);
}

TEST_F(ContainerStoreLogs, ShowsADockerThatCannotBeStartedInTheSheet)
{
    tools.addTool(u"docker"_s, QString());
    tools.setInterpreter(u"docker"_s, u"/nonexistent/interpreter"_s);
    store.logs(web);
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    EXPECT_TRUE(store.logText().startsWith(u"Could not read logs: Could not start docker: "_s));
}

TEST_F(ContainerStoreRun, TellsADockerThatCannotBeStarted)
{
    tools.addTool(u"docker"_s, QString());
    tools.setInterpreter(u"docker"_s, u"/nonexistent/interpreter"_s);
    store.runContainer(u"nginx"_s, QString(), QString());
    ASSERT_TRUE(untilIdle());
    EXPECT_TRUE(store.message().startsWith(u"docker run failed: Could not start docker: "_s));
}

TEST_F(ContainerStoreLogs, CanBeReadDuringAnAction)
{
    tools.addTool(u"docker"_s, u"[ \"$1\" = logs ] && { echo line; exit; }\n"_s + u"while [ ! -e '"_s +
                                   tools.path(u"go"_s) + u"' ]; do sleep 0.02; done"_s);
    store.action(u"stop"_s, web);
    store.logs(web);
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    EXPECT_TRUE(store.busy());
    EXPECT_EQ(store.logText(), u"line"_s);
    write(u"go"_s, "");
    ASSERT_TRUE(untilIdle());
}

TEST_F(ContainerStoreLogs, ShowsTheSheetAgainAfterItWasClosedAndKeepsItsTextsMeanwhile)
{
    tools.addTool(u"docker"_s, u"echo line"_s);
    store.logs(web);
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    store.setShowLogs(false);
    EXPECT_EQ(store.logTitle(), u"web"_s);
    EXPECT_EQ(store.logText(), u"line"_s);
    store.logs(web);
    EXPECT_TRUE(waitUntil([this] { return store.showLogs(); }));
}

TEST_F(ContainerStoreLogs, HasItsTextsReadyWhenTheSheetIsAskedFor)
{
    tools.addTool(u"docker"_s, u"echo line"_s);
    QString seen;
    QObject::connect(&store, &ContainerStore::showLogsChanged, &store,
                     [this, &seen] { seen = store.logTitle() + u'|' + store.logText(); });
    store.logs(web);
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    EXPECT_EQ(seen, u"web|line"_s);
}

TEST_F(ContainerStoreLogs, HoldsThreeHundredLinesOfAHundredKilobytes)
{
    write(u"log"_s, (QByteArray(100 * 1024, 'x') + '\n').repeated(300));
    tools.addTool(u"docker"_s, u"cat '"_s + tools.path(u"log"_s) + u"'"_s);
    store.logs(web);
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    EXPECT_EQ(store.logText().size(), 300 * (100 * 1024 + 1) - 1);
}

TEST_F(ContainerStoreRun, StartsADetachedContainerFromTheImageAlone)
{
    tools.addTool(u"docker"_s, dockerWith(u"echo 9f8e"_s));
    store.runContainer(u"\t nginx:latest \u00a0\n"_s, u"  "_s, QString());
    EXPECT_TRUE(store.busy());
    EXPECT_EQ(store.message(), u"Running nginx:latest… (pulling the image can take a while)"_s);
    ASSERT_TRUE(untilListed());
    EXPECT_EQ(tools.calls(u"docker"_s), (QStringList{u"<run><-d><nginx:latest>"_s, listCall}));
    EXPECT_EQ(store.message(), u"Started nginx:latest."_s);
}

TEST_F(ContainerStoreRun, PassesNameAndPortsInOrder)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    store.runContainer(u"nginx"_s, u" web.1_a-b "_s, u"8080:80, 443"_s);
    ASSERT_TRUE(untilListed());
    EXPECT_EQ(tools.calls(u"docker"_s)[0], u"<run><-d><--name><web.1_a-b><-p><8080:80><-p><443><nginx>"_s);
    EXPECT_EQ(store.message(), u"Started web.1_a-b."_s);
}

TEST_F(ContainerStoreRun, AcceptsEveryFormOfAMapping)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    store.runContainer(u"nginx"_s, QString(), u" ,,127.0.0.1:8080:80/tcp  53/udp,127.0.0.1:53 , 1:2/udp,"_s);
    ASSERT_TRUE(untilListed());
    EXPECT_EQ(tools.calls(u"docker"_s)[0],
              u"<run><-d><-p><127.0.0.1:8080:80/tcp><-p><53/udp><-p><127.0.0.1:53><-p><1:2/udp><nginx>"_s);
}

TEST_F(ContainerStoreRun, AddsNoPortForATextOfCommasAndBlanks)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    store.runContainer(u"nginx"_s, QString(), u" ,, , "_s);
    ASSERT_TRUE(untilListed());
    EXPECT_EQ(tools.calls(u"docker"_s)[0], u"<run><-d><nginx>"_s);
}

TEST_F(ContainerStoreRun, AcceptsEveryFormOfAnImage)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    for (const QString &image : {u"a"_s, u"9"_s, u"ghcr.io:5000/Own_er/im-age:1.2@sha256:0abc"_s}) {
        store.runContainer(image, QString(), QString());
        EXPECT_TRUE(store.busy()) << image.toStdString();
        ASSERT_TRUE(untilIdle());
        EXPECT_EQ(store.message(), u"Started "_s + image + u'.');
    }
}

TEST_F(ContainerStoreRun, RefusesWhatIsNoImage)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    for (const QString &image : {QString(), u"  "_s, u"-v"_s, u"--privileged"_s, u".a"_s, u"a b"_s, u"a\nb"_s, u"a;b"_s,
                                 u"<b>a</b>"_s, u"ä"_s, u"a$"_s, u"aé"_s}) {
        store.runContainer(image, u"also bad!"_s, u"bad"_s);
        EXPECT_FALSE(store.busy());
        EXPECT_EQ(store.message(), u"Enter a valid image name, for example nginx:latest."_s) << image.toStdString();
    }
    EXPECT_TRUE(tools.calls(u"docker"_s).isEmpty());
}

TEST_F(ContainerStoreRun, RefusesWhatIsNoContainerName)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    for (const QString &name : {u"my web"_s, u"-web"_s, u"_web"_s, u"web/1"_s, u"web:1"_s, u"wéb"_s, u"a\nb"_s}) {
        store.runContainer(u"nginx"_s, name, u"bad"_s);
        EXPECT_FALSE(store.busy());
        EXPECT_EQ(store.message(), u"The container name has characters Docker does not allow."_s) << name.toStdString();
    }
    EXPECT_TRUE(tools.calls(u"docker"_s).isEmpty());
}

TEST_F(ContainerStoreRun, RefusesWhatIsNoMapping)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    for (const QString &ports :
         {u"8000-8010:80"_s, u"http"_s, u"80:"_s, u":80"_s, u"80:80:80:80"_s, u"80/sctp"_s, u"80/TCP"_s, u"8080:80,x"_s,
          u"80\t81"_s, u"80\n"_s, u"[::1]:80:80"_s, u"٨٠"_s, u"80;81"_s, u"-p"_s}) {
        store.runContainer(u"nginx"_s, u"web"_s, ports);
        EXPECT_FALSE(store.busy());
        EXPECT_EQ(store.message(), u"Ports look like 8080:80, separated by commas."_s) << ports.toStdString();
    }
    EXPECT_TRUE(tools.calls(u"docker"_s).isEmpty());
}

TEST_F(ContainerStoreRun, TellsAFailureWithAllThatDockerPrinted)
{
    tools.addTool(u"docker"_s, dockerWith(u"echo 9f8e; echo 'docker: pull access denied.' >&2; exit 125"_s));
    store.runContainer(u"nginx"_s, u"web"_s, QString());
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(store.message(), u"docker run failed: 9f8e\ndocker: pull access denied."_s);
    EXPECT_TRUE(untilListed());
}

TEST_F(ContainerStoreRun, TellsATimeOutAsAFailure)
{
    ContainerStore impatient({.run = 0.3});
    tools.addTool(u"docker"_s, dockerWith(u"echo pulling >&2; exec sleep 60"_s));
    impatient.runContainer(u"nginx"_s, QString(), QString());
    ASSERT_TRUE(waitUntil([&impatient] { return !impatient.busy(); }));
    EXPECT_EQ(impatient.message(), u"docker run failed: pulling"_s);
}

TEST_F(ContainerStoreRun, RefusesHugeTextsAtOnce)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    QElapsedTimer timer;
    timer.start();
    store.runContainer(QString(5000000, u'a') + u'!', QString(), QString());
    EXPECT_EQ(store.message(), u"Enter a valid image name, for example nginx:latest."_s);
    store.runContainer(u"a"_s, QString(5000000, u'a') + u'!', QString());
    EXPECT_EQ(store.message(), u"The container name has characters Docker does not allow."_s);
    store.runContainer(u"a"_s, QString(), QString(5000000, u'8') + u'!');
    EXPECT_EQ(store.message(), u"Ports look like 8080:80, separated by commas."_s);
    EXPECT_LT(timer.elapsed(), 10000);
}
