#include "ContainerStoreTest.h"

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

TEST_F(ContainerStoreRefresh, ShowsTheListBeforeItClearsTheError)
{
    tools.addTool(u"docker"_s, u"exit 1"_s);
    ASSERT_TRUE(waitFor(store.refresh()));
    QStringList order;
    QObject::connect(&store, &ContainerStore::containersChanged, &store, [&] { order << u"containers"_s; });
    QObject::connect(&store, &ContainerStore::errorChanged, &store, [&] { order << u"error"_s; });
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ASSERT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(order, QStringList({u"containers"_s, u"error"_s}));
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
    ContainerStore impatient({.list = 2});
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ASSERT_TRUE(waitFor(impatient.refresh()));
    tools.addTool(u"docker"_s, u"exec sleep 600"_s);
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

TEST_F(ContainerStoreRefresh, LetsTheLaterOfTwoDecideTheError)
{
    for (const bool laterFails : {true, false}) {
        const QString go = laterFails ? u"go"_s : u"go on"_s;
        const QString fails = u"echo broken >&2; exit 1"_s;
        const qsizetype before = tools.calls(u"docker"_s).size();
        tools.addTool(u"docker"_s, tools.waitForFile(go) + (laterFails ? fails : u":"_s));
        auto slow = store.refresh();
        ASSERT_TRUE(waitUntil([&] { return tools.calls(u"docker"_s).size() == before + 1; }));
        tools.addTool(u"docker"_s, laterFails ? u":"_s : fails);
        ASSERT_TRUE(waitFor(store.refresh()));
        EXPECT_EQ(store.error().has_value(), !laterFails);
        tools.addFile(go);
        ASSERT_TRUE(waitFor(std::move(slow)));
        EXPECT_EQ(store.error().has_value(), laterFails);
    }
}
