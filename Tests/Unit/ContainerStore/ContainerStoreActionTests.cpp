#include "ContainerStoreTest.h"

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
    ContainerStore impatient({.action = 1});
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

TEST_F(ContainerStoreAction, TellsTheOutcomeThenIsIdleThenLists)
{
    const auto orderOf = [](const std::function<void(ContainerStore &)> &begin) {
        ContainerStore fresh;
        QStringList order;
        QObject::connect(&fresh, &ContainerStore::messageChanged, &fresh, [&] { order << fresh.message(); });
        QObject::connect(&fresh, &ContainerStore::busyChanged, &fresh,
                         [&] { order << (fresh.busy() ? u"busy"_s : u"idle"_s); });
        QObject::connect(&fresh, &ContainerStore::containersChanged, &fresh, [&] { order << u"containers"_s; });
        begin(fresh);
        EXPECT_TRUE(waitUntil([&] { return !fresh.containers().isEmpty(); }));
        return order;
    };
    tools.addTool(u"docker"_s, dockerWith(u"[ $1 = run ]"_s));
    EXPECT_EQ(orderOf([](ContainerStore &fresh) { fresh.action(u"stop"_s, web); }),
              QStringList({u"busy"_s, u"docker stop failed: "_s, u"idle"_s, u"containers"_s}));
    EXPECT_EQ(orderOf([](ContainerStore &fresh) { fresh.runContainer(u"nginx"_s, {}, {}); }),
              QStringList({u"busy"_s, u"Running nginx… (pulling the image can take a while)"_s, u"Started nginx."_s,
                           u"idle"_s, u"containers"_s}));
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

TEST_F(ContainerStoreAction, NamesWhatGoesOn)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    EXPECT_EQ(store.operation(), QString());
    const QList<std::pair<QString, QString>> verbs{
        {u"start"_s, u"started"_s}, {u"stop"_s, u"stopped"_s}, {u"rm"_s, u"removed"_s}};
    for (const auto &[verb, participle] : verbs) {
        store.action(verb, web);
        EXPECT_EQ(store.operation(), u"The container web is being "_s + participle + u'.');
        ASSERT_TRUE(untilIdle());
        EXPECT_EQ(store.operation(), QString());
    }
    store.runContainer(u" nginx "_s, QString(), QString());
    EXPECT_EQ(store.operation(), u"A container of nginx is being started."_s);
    ASSERT_TRUE(untilIdle());
}
