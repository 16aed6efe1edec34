#include "ContainerStore/ContainerList.h"

#include "Support/ProcessorTimer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ContainerList::parseContainers;

namespace
{

// What a Docker client of 2026 prints for one container.
const QString nginxLine =
    uR"json({"Command":"\"/docker-entrypoint.…\"","CreatedAt":"2026-11-20 10:11:12 +0100 CET","HealthStatus":"","ID":"0123456789ab",)json"
    uR"json("IPAddresses":[{"Network":"bridge","IP":"172.17.0.2"}],"Image":"nginx:latest","Labels":"a=b,c=d,e",)json"
    uR"json("LocalVolumes":"0","Mounts":"","Names":"web","Networks":"bridge","Platform":null,)json"
    uR"json("Ports":"0.0.0.0:8080->80/tcp, [::]:8080->80/tcp","RunningFor":"2 minutes ago","Size":"1.09kB (virtual 192MB)",)json"
    uR"json("State":"running","Status":"Up 2 minutes (healthy)"})json"_s;

const ContainerInfo nginx{u"0123456789ab"_s,           u"web"_s,
                          u"nginx:latest"_s,           u"running"_s,
                          u"Up 2 minutes (healthy)"_s, u"0.0.0.0:8080->80/tcp, [::]:8080->80/tcp"_s};

} // namespace

TEST(ContainerList, ReadsTheSixTextsOfALine)
{
    EXPECT_EQ(parseContainers(nginxLine), QList{nginx});
    EXPECT_EQ(parseContainers(nginxLine + u'\n'), QList{nginx});
}

TEST(ContainerList, IsEmptyForAnEmptyOutput)
{
    EXPECT_TRUE(parseContainers(QString()).isEmpty());
    EXPECT_TRUE(parseContainers(u"\n\n\n"_s).isEmpty());
}

TEST(ContainerList, KeepsTheOrderAndRemovesNoDouble)
{
    const QList<ContainerInfo> containers =
        parseContainers(u"{\"ID\":\"b\"}\n{\"ID\":\"a\"}\n\n{\"ID\":\"b\",\"State\":\"dead\"}\n"_s);
    ASSERT_EQ(containers.size(), 3);
    EXPECT_EQ(containers[0].id, u"b"_s);
    EXPECT_EQ(containers[1].id, u"a"_s);
    EXPECT_EQ(containers[2].id, u"b"_s);
    EXPECT_EQ(containers[2].state, u"dead"_s);
}

TEST(ContainerList, SkipsWhatIsNoObjectAndReadsTheLinesAroundIt)
{
    for (const QString &line :
         {u"{}"_s, u"[]"_s, u"[{\"ID\":\"x\"}]"_s, u"[\"ID\",\"x\"]"_s, u"\"ID\""_s, u"17"_s, u"null"_s, u"true"_s,
          u"1.5"_s, u"WARNING: Error loading config file: permission denied"_s, u"{\"ID\":\"x\""_s,
          u"{\"ID\":\"x\"} and more"_s, u"{\"ID\":\"x\"}{\"ID\":\"y\"}"_s, u"{'ID':'x'}"_s, u"   "_s, u"\0"_s,
          u"{\"ID\":\"\\ud800\"}"_s, u"{\"ID\":\"x\",}"_s}) {
        const QList<ContainerInfo> containers =
            parseContainers(u"{\"ID\":\"before\"}\n"_s + line + u"\n{\"ID\":\"after\"}"_s);
        ASSERT_EQ(containers.size(), 2) << line.toStdString();
        EXPECT_EQ(containers[0].id, u"before"_s);
        EXPECT_EQ(containers[1].id, u"after"_s);
    }
}

TEST(ContainerList, SkipsALineWithoutAnIdentifierText)
{
    EXPECT_TRUE(parseContainers(u"{\"Names\":\"web\"}"_s).isEmpty());
    EXPECT_TRUE(parseContainers(u"{\"ID\":\"\",\"Names\":\"web\"}"_s).isEmpty());
    EXPECT_TRUE(parseContainers(u"{\"ID\":42,\"Names\":\"web\"}"_s).isEmpty());
    EXPECT_TRUE(parseContainers(u"{\"ID\":null,\"Names\":\"web\"}"_s).isEmpty());
    EXPECT_TRUE(parseContainers(u"{\"ID\":[\"x\"],\"Names\":\"web\"}"_s).isEmpty());
    EXPECT_TRUE(parseContainers(u"{\"id\":\"x\"}"_s).isEmpty());
}

TEST(ContainerList, NamesAContainerAfterItsIdentifierWhenItHasNoName)
{
    EXPECT_EQ(parseContainers(u"{\"ID\":\"x\"}"_s).value(0).name, u"x"_s);
    EXPECT_EQ(parseContainers(u"{\"ID\":\"x\",\"Names\":7}"_s).value(0).name, u"x"_s);
    EXPECT_EQ(parseContainers(u"{\"Names\":null,\"ID\":\"x\"}"_s).value(0).name, u"x"_s);
    EXPECT_EQ(parseContainers(u"{\"ID\":\"x\",\"Names\":\"\"}"_s).value(0).name, QString());
}

TEST(ContainerList, ReadsAMissingTextAndAValueOfAnotherTypeAsEmpty)
{
    const ContainerInfo bare{u"x"_s, u"x"_s, QString(), QString(), QString(), QString()};
    EXPECT_EQ(parseContainers(u"{\"ID\":\"x\"}"_s), QList{bare});
    EXPECT_EQ(parseContainers(
                  u"{\"ID\":\"x\",\"Image\":true,\"State\":3,\"Status\":{\"Status\":\"Up\"},\"Ports\":[\"80\"]}"_s),
              QList{bare});
}

TEST(ContainerList, TakesNoTextFromANestedValue)
{
    const QList<ContainerInfo> containers = parseContainers(
        u"{\"Platform\":{\"ID\":\"arm64\",\"Names\":\"linux\"},\"ID\":\"x\",\"More\":[{\"Image\":\"y\"}]}"_s);
    EXPECT_EQ(containers, (QList{ContainerInfo{u"x"_s, u"x"_s, {}, {}, {}, {}}}));
}

TEST(ContainerList, TakesTheLastOfTwoValuesForOneKey)
{
    EXPECT_EQ(parseContainers(u"{\"ID\":\"x\",\"State\":\"created\",\"State\":\"running\"}"_s).value(0).state,
              u"running"_s);
    for (const QString &last : {u"1"_s, u"-1"_s, u"1.5"_s, u"true"_s, u"null"_s, u"[]"_s, u"[\"running\"]"_s, u"{}"_s,
                                u"{\"State\":\"running\"}"_s}) {
        const QString line = u"{\"ID\":\"x\",\"State\":\"created\",\"State\":"_s + last + u'}';
        EXPECT_EQ(parseContainers(line).value(0).state, QString()) << last.toStdString();
    }
}

TEST(ContainerList, TrimsNothing)
{
    EXPECT_EQ(parseContainers(u"{\"ID\":\" x \",\"Names\":\"\\tweb\\n\"}\r\n"_s).value(0),
              (ContainerInfo{u" x "_s, u"\tweb\n"_s, {}, {}, {}, {}}));
}

TEST(ContainerList, KeepsTextsOfEveryScript)
{
    EXPECT_EQ(
        parseContainers(u"{\"ID\":\"x\",\"Names\":\"\\u00fc🐳\\ud83d\\udc33\",\"Image\":\"<b>&amp;\"}"_s).value(0),
        (ContainerInfo{u"x"_s, u"ü🐳🐳"_s, u"<b>&amp;"_s, {}, {}, {}}));
}

TEST(ContainerList, SurvivesAMillionBrackets)
{
    const QString open(1000000, u'[');
    const QString close(1000000, u']');
    const QString lines = open + u'\n' + u"{\"ID\":\"deep\",\"Platform\":"_s + open + close + u"}\n{\"a\":"_s +
                          QString(u"{\"a\":"_s).repeated(200000) + u"\n{\"ID\":\"last\"}"_s;
    const QList<ContainerInfo> containers = parseContainers(lines);
    ASSERT_EQ(containers.size(), 2);
    EXPECT_EQ(containers[0].id, u"deep"_s);
    EXPECT_EQ(containers[1].id, u"last"_s);
}

TEST(ContainerList, IsQuickForFiveThousandContainersAndForALineOfTenMegabytes)
{
    ProcessorTimer timer;
    timer.start();
    EXPECT_EQ(parseContainers((nginxLine + u'\n').repeated(5000)).size(), 5000);
    EXPECT_EQ(parseContainers(u"{\"Labels\":\""_s + QString(10000000, u'x') + u"\",\"ID\":\"x\"}"_s).size(), 1);
    EXPECT_TRUE(parseContainers(QString(10000000, u'x')).isEmpty());
#ifndef __SANITIZE_THREAD__ // which makes all code ten times slower and says nothing of the product's speed
    // Far above what it takes, so that only a change of order of growth fails.
    EXPECT_LT(timer.elapsed(), 10000);
#endif
    RecordProperty("milliseconds", static_cast<int>(timer.elapsed()));
}

TEST(ContainerList, SkipsALineThatGoesOnBehindANul)
{
    EXPECT_TRUE(parseContainers(nginxLine + QChar::Null + u"{}"_s).isEmpty());
}
