#include "ContainerStore/ContainerInfo.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ContainerInfo, RunsWhenItsStateSaysSoInAnyLetterCase)
{
    ContainerInfo container{u"x"_s, u"web"_s, u"nginx"_s, u"Running"_s, u"Up"_s, QString()};
    EXPECT_TRUE(container.isRunning());
    for (const QString &state : {u"exited"_s, u"created"_s, u"paused"_s, u"restarting"_s, u"running "_s, QString()}) {
        container.state = state;
        EXPECT_FALSE(container.isRunning()) << state.toStdString();
    }
}

TEST(ContainerInfo, ComparesAndHashesAllSixTexts)
{
    const ContainerInfo container{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s};
    for (QString ContainerInfo::*field : {&ContainerInfo::id, &ContainerInfo::name, &ContainerInfo::image,
                                          &ContainerInfo::state, &ContainerInfo::status, &ContainerInfo::ports}) {
        ContainerInfo other = container;
        other.*field = u"z"_s;
        EXPECT_NE(container, other);
        EXPECT_NE(qHash(container), qHash(other));
    }
    EXPECT_EQ(qHash(container), qHash(ContainerInfo(container)));
}
