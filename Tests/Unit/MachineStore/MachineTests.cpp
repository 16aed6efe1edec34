#include "MachineStore/Distro.h"
#include "MachineStore/Machine.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(Machine, LabelsItsDistributionWithTheVersionWhenThereIsOne)
{
    EXPECT_EQ(Machine({u"a"_s, u"running"_s, u"ubuntu"_s, u"24.04"_s}).distroLabel(), u"ubuntu 24.04"_s);
    EXPECT_EQ(Machine({u"a"_s, u"running"_s, u"ubuntu"_s, QString()}).distroLabel(), u"ubuntu"_s);
    EXPECT_EQ(Machine({u"a"_s, u"running"_s, QString(), QString()}).distroLabel(), QString());
}

TEST(Machine, ComparesAndHashesAllFourTexts)
{
    const Machine machine{u"a"_s, u"b"_s, u"c"_s, u"d"_s};
    for (QString Machine::*field : {&Machine::name, &Machine::state, &Machine::distro, &Machine::version}) {
        Machine other = machine;
        other.*field = u"z"_s;
        EXPECT_NE(machine, other);
        EXPECT_NE(qHash(machine), qHash(other));
    }
    EXPECT_EQ(qHash(machine), qHash(Machine(machine)));
}

TEST(Distro, IsBuiltFromItsExactRawValueOnly)
{
    EXPECT_EQ(distroFromRawValue(u"alpine"_s), Distro::alpine);
    EXPECT_EQ(distroFromRawValue(u"Ubuntu"_s), std::nullopt);
    EXPECT_EQ(distroFromRawValue(u"fedora"_s), std::nullopt);
    EXPECT_EQ(distroFromRawValue(QString()), std::nullopt);
}
