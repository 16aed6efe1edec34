#include "ContainerStoreTest.h"

#include "Support/ProcessorTimer.h"

TEST_F(ContainerStoreRun, TellsADockerThatCannotBeStarted)
{
    tools.addTool(u"docker"_s, QString());
    tools.setInterpreter(u"docker"_s, u"/nonexistent/interpreter"_s);
    store.runContainer(u"nginx"_s, QString(), QString());
    ASSERT_TRUE(untilIdle());
    EXPECT_TRUE(store.message().startsWith(u"docker run failed: Could not start docker: "_s));
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
    ContainerStore impatient({.run = 1});
    tools.addTool(u"docker"_s, dockerWith(u"echo pulling >&2; exec sleep 600"_s));
    impatient.runContainer(u"nginx"_s, QString(), QString());
    ASSERT_TRUE(waitUntil([&impatient] { return !impatient.busy(); }));
    EXPECT_EQ(impatient.message(), u"docker run failed: pulling"_s);
}

TEST_F(ContainerStoreRun, RefusesHugeTextsAtOnce)
{
    tools.addTool(u"docker"_s, dockerWith(QString()));
    ProcessorTimer timer;
    timer.start();
    store.runContainer(QString(5000000, u'a') + u'!', QString(), QString());
    EXPECT_EQ(store.message(), u"Enter a valid image name, for example nginx:latest."_s);
    store.runContainer(u"a"_s, QString(5000000, u'a') + u'!', QString());
    EXPECT_EQ(store.message(), u"The container name has characters Docker does not allow."_s);
    store.runContainer(u"a"_s, QString(), QString(5000000, u'8') + u'!');
    EXPECT_EQ(store.message(), u"Ports look like 8080:80, separated by commas."_s);
    EXPECT_LT(timer.elapsed(), 10000);
}
