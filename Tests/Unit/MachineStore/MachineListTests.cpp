#include "MachineStore/MachineList.h"

#include "Support/ProcessorTimer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

using Machines = QList<Machine>;

std::optional<Machines> fromJson(const char *json)
{
    return MachineList::parseMachinesJson(QString::fromUtf8(json));
}

Machines fromText(const char *text)
{
    return MachineList::parseMachinesText(QString::fromUtf8(text));
}

} // namespace

TEST(MachinesInJson, AreNoneForAnEmptyArrayAndAbsentForAnythingThatIsNoArray)
{
    EXPECT_EQ(fromJson("[]"), Machines());
    EXPECT_EQ(fromJson(" [ ] \n"), Machines());
    for (const char *text : {"", " ", "{}", "null", "\"a\"", "5", "[", "[]]", "[1,]", "{\"name\":\"a\"}",
                             "orb: not running", "[{\"name\":\"a\"}] x", "[\"\\ud800\"]"})
        EXPECT_EQ(fromJson(text), std::nullopt) << text;
}

TEST(MachinesInJson, NeedNothingButAName)
{
    const std::optional<Machines> machines = fromJson(R"([{"name":"a"}])");
    ASSERT_EQ(machines, Machines({{u"a"_s, u"unknown"_s, QString(), QString()}}));
    EXPECT_EQ(machines->first().distroLabel(), QString());
}

TEST(MachinesInJson, MayHaveAnEmptyName)
{
    EXPECT_EQ(fromJson(R"([{"name":""}])"), Machines({{QString(), u"unknown"_s, QString(), QString()}}));
}

TEST(MachinesInJson, TakeTheStateFromTheOuterObjectWhenTheRecordHasNone)
{
    const std::optional<Machines> machines =
        fromJson(R"([{"record":{"name":"a","image":{"distro":"ubuntu","version":"24.04"}},"state":"running"}])");
    ASSERT_EQ(machines, Machines({{u"a"_s, u"running"_s, u"ubuntu"_s, u"24.04"_s}}));
    EXPECT_EQ(machines->first().distroLabel(), u"ubuntu 24.04"_s);
}

TEST(MachinesInJson, PreferTheStateOfTheRecord)
{
    EXPECT_EQ(fromJson(R"([{"record":{"name":"a","state":"stopped"},"state":"running"}])")->first().state,
              u"stopped"_s);
    EXPECT_EQ(fromJson(R"([{"record":{"name":"a","state":7},"state":"running"}])")->first().state, u"running"_s);
    EXPECT_EQ(fromJson(R"([{"record":{"name":"a"},"state":null}])")->first().state, u"unknown"_s);
}

TEST(MachinesInJson, MixImageAndRecord)
{
    EXPECT_EQ(fromJson(R"([{"name":"a","distro":"debian","image":{"version":"12"}}])"),
              Machines({{u"a"_s, u"unknown"_s, u"debian"_s, u"12"_s}}));
    EXPECT_EQ(fromJson(R"([{"name":"a","version":"x","image":{"distro":"debian"}}])"),
              Machines({{u"a"_s, u"unknown"_s, u"debian"_s, u"x"_s}}));
    EXPECT_EQ(fromJson(R"([{"name":"a","distro":"debian","version":"12","image":["no object"]}])"),
              Machines({{u"a"_s, u"unknown"_s, u"debian"_s, u"12"_s}}));
    EXPECT_EQ(fromJson(R"([{"name":"a","distro":"debian","image":{"distro":""}}])")->first().distro, QString())
        << "an empty text is a text";
}

TEST(MachinesInJson, LookForTheImageInTheRecordOnly)
{
    EXPECT_EQ(fromJson(R"([{"record":{"name":"a"},"image":{"distro":"ubuntu"},"distro":"debian"}])"),
              Machines({{u"a"_s, u"unknown"_s, QString(), QString()}}));
}

TEST(MachinesInJson, SkipAnElementWhoseRecordHasNoName)
{
    EXPECT_EQ(fromJson(R"([{"record":{},"name":"a"}])"), Machines());
    EXPECT_EQ(fromJson(R"([{"record":"text","name":"a"}])")->size(), 1) << "a record that is no object is no record";
}

TEST(MachinesInJson, SkipWhatIsNoObjectOrHasNoTextAsName)
{
    EXPECT_EQ(fromJson(R"([1,null,"a",[{"name":"b"}],{"name":5},{"name":null},{"state":"running"},{"name":"c"}])"),
              Machines({{u"c"_s, u"unknown"_s, QString(), QString()}}));
}

TEST(MachinesInJson, TakeAVersionThatIsNoTextAsMissing)
{
    EXPECT_EQ(fromJson(R"([{"name":"a","version":12}])")->first().version, QString());
    EXPECT_EQ(fromJson(R"([{"name":"a","version":"r","image":{"version":24.04}}])")->first().version, u"r"_s);
}

TEST(MachinesInJson, KeepOrderDuplicatesAndEveryCharacter)
{
    const std::optional<Machines> machines =
        fromJson("[{\"name\":\"b\"},{\"name\":\"a\"},{\"name\":\"b\"},{\"name\":\"<b>\\u202e\\u0000\u00e9\"}]");
    ASSERT_TRUE(machines && machines->size() == 4);
    EXPECT_EQ(machines->at(0).name, u"b"_s);
    EXPECT_EQ(machines->at(1).name, u"a"_s);
    EXPECT_EQ(machines->at(2).name, u"b"_s);
    EXPECT_EQ(machines->at(3).name, u"<b>\u202e\0\u00e9"_s);
}

TEST(MachinesInJson, KeepAByteOrderMarkThatBelongsToAName)
{
    EXPECT_EQ(fromJson("[{\"name\":\"\ufeffa\"}]")->first().name, u"\ufeffa"_s);
}

TEST(MachinesInJson, ReadTheRecordsThatOrbPrints)
{
    EXPECT_EQ(fromJson(R"([{"id":"01K2G8TY5GM9C3CN95KCB4ZG8B","name":"web","image":{"distro":"ubuntu","version":"jammy",
                            "arch":"arm64","variant":"default"},"config":{"isolated":false,"default_username":"ubuntu"},
                            "builtin":false,"state":"running"}])"),
              Machines({{u"web"_s, u"running"_s, u"ubuntu"_s, u"jammy"_s}}));
}

TEST(MachinesInJson, SurviveAMillionNestedBrackets)
{
    constexpr qsizetype depth = 1'000'000;
    EXPECT_EQ(MachineList::parseMachinesJson(QString(depth, u'[')), std::nullopt);
    EXPECT_EQ(MachineList::parseMachinesJson(QString(depth, u'[') + QString(depth, u']')), Machines());
    EXPECT_EQ(MachineList::parseMachinesJson(u"[{\"name\":\"a\",\"image\":"_s + u"{\"image\":"_s.repeated(depth) +
                                             u'1' + QString(depth, u'}') + u"}]"_s),
              Machines({{u"a"_s, u"unknown"_s, QString(), QString()}}));
}

TEST(MachinesInJson, AreReadQuicklyWhenThereAreFiveThousand)
{
    QString json = u"["_s;
    for (int index = 0; index < 5000; ++index) {
        json += u"{\"id\":\"01K2G8TY5GM9C3CN95KCB4ZG8B\",\"name\":\"machine-%1\",\"image\":{\"distro\":\"ubuntu\","
                "\"version\":\"noble\",\"arch\":\"arm64\",\"variant\":\"default\"},\"config\":{\"isolated\":false},"
                "\"builtin\":false,\"state\":\"running\"},"_s.arg(index);
    }
    json.back() = u']';
    ProcessorTimer timer;
    timer.start();
    const std::optional<Machines> machines = MachineList::parseMachinesJson(json);
    RecordProperty("milliseconds", static_cast<int>(timer.elapsed()));
    ASSERT_EQ(machines->size(), 5000);
    EXPECT_EQ(machines->last().name, u"machine-4999"_s);
#if defined(__SANITIZE_ADDRESS__)
    EXPECT_LT(timer.elapsed(), 5000);
#elif !defined(__SANITIZE_THREAD__) // which makes all code ten times slower and says nothing of the product's speed
    EXPECT_LT(timer.elapsed(), 1000);
#endif
}

TEST(MachinesInJson, MayHoldAMegabyteOfText)
{
    const QString name(1 << 20, u'x');
    EXPECT_EQ(MachineList::parseMachinesJson(u"[{\"name\":\""_s + name + u"\"}]"_s)->first().name, name);
}

TEST(MachinesInATable, DropTheHeadingEmptyLinesAndLinesOfOneField)
{
    EXPECT_EQ(fromText("NAME STATE DISTRO VERSION ARCH\n\nalone\nname x\nName y\nweb running ubuntu noble arm64\n"),
              Machines({{u"web"_s, u"running"_s, u"ubuntu"_s, u"noble"_s}}));
    EXPECT_EQ(fromText(""), Machines());
    EXPECT_EQ(fromText("\n \t \n"), Machines());
}

TEST(MachinesInATable, DropTheLineUnderTheHeading)
{
    EXPECT_EQ(fromText("NAME  STATE    DISTRO\n----  -----    ------\nweb   running  ubuntu\n"),
              Machines({{u"web"_s, u"running"_s, u"ubuntu"_s, QString()}}));
    EXPECT_EQ(fromText("- running\n-a running"), Machines({{u"-a"_s, u"running"_s, QString(), QString()}}))
        << "a line of dashes and nothing else";
}

TEST(MachinesInATable, TakeWhatIsMissingAsEmpty)
{
    EXPECT_EQ(fromText("a\tstopped"), Machines({{u"a"_s, u"stopped"_s, QString(), QString()}}));
    EXPECT_EQ(fromText("a stopped debian"), Machines({{u"a"_s, u"stopped"_s, u"debian"_s, QString()}}));
}

TEST(MachinesInATable, PartFieldsAtRunsOfBlanksAndTabsOnly)
{
    EXPECT_EQ(fromText(" \t a \t  running\tubuntu   noble  1.0 GB \t"),
              Machines({{u"a"_s, u"running"_s, u"ubuntu"_s, u"noble"_s}}));
    EXPECT_EQ(fromText("a\u00a0b running"), Machines({{u"a\u00a0b"_s, u"running"_s, QString(), QString()}}))
        << "a no-break space parts nothing";
    EXPECT_EQ(fromText("a\vb running"), Machines({{u"a\vb"_s, u"running"_s, QString(), QString()}}));
}

TEST(MachinesInATable, EndLinesAtLineFeedsAndLoneCarriageReturns)
{
    const Machines expected{{u"a"_s, u"on"_s, QString(), QString()}, {u"b"_s, u"off"_s, QString(), QString()}};
    EXPECT_EQ(fromText("a on\nb off"), expected);
    EXPECT_EQ(fromText("a on\r\nb off\r\n"), expected);
    EXPECT_EQ(fromText("a on\rb off\r"), expected);
    EXPECT_EQ(fromText("a on\u2028b off"), Machines({{u"a"_s, u"on\u2028b"_s, u"off"_s, QString()}}));
}

TEST(MachinesInATable, KeepOrderAndDuplicates)
{
    const Machines machines = fromText("b on\na on\nb on");
    ASSERT_EQ(machines.size(), 3);
    EXPECT_EQ(machines[0].name, u"b"_s);
    EXPECT_EQ(machines[1].name, u"a"_s);
}

TEST(MachinesInJson, AreAbsentWhereAnythingStandsBehindANul)
{
    EXPECT_EQ(MachineList::parseMachinesJson(u"[]"_s + QChar::Null + u"NAME STATE"_s), std::nullopt);
    EXPECT_EQ(MachineList::parseMachinesJson(u"[]"_s + QChar::Null), std::nullopt);
}
