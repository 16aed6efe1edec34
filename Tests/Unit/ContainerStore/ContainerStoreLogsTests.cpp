#include "ContainerStoreTest.h"

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
    ContainerStore impatient({.logs = 1});
    tools.addTool(u"docker"_s, u"echo part; exec sleep 600"_s);
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

TEST_F(ContainerStoreLogs, KeepsTheLastFourMebibytesOfLongLinesAndSaysSo)
{
    write(u"log"_s, (QByteArray(100 * 1024, 'x') + '\n').repeated(300) + "the end");
    tools.addTool(u"docker"_s, u"cat '"_s + tools.path(u"log"_s) + u"'"_s);
    store.logs(web);
    ASSERT_TRUE(waitUntil([this] { return store.showLogs(); }));
    const auto says = u"(only the last 4 MiB are kept)\n"_s;
    EXPECT_TRUE(store.logText().startsWith(says + u'x'));
    EXPECT_TRUE(store.logText().endsWith(u"x\nthe end"_s));
    EXPECT_EQ(store.logText().size(), says.size() + qsizetype{4} * 1024 * 1024);
}
