#include "MachineStoreTest.h"

#include <QFile>

using namespace Qt::StringLiterals;

TEST_F(MachineStoreTest, StartsEmpty)
{
    EXPECT_TRUE(store.machines().isEmpty());
    EXPECT_EQ(store.error(), std::nullopt);
    EXPECT_FALSE(store.busy());
    EXPECT_EQ(store.log(), QString());
}

TEST_F(MachineStoreTest, GivesEachToolItsTime)
{
    const MachineTimeLimits seconds;
    EXPECT_EQ(seconds.list, 10);
    EXPECT_EQ(seconds.simple, 120);
    EXPECT_EQ(seconds.deletion, 120);
    EXPECT_EQ(seconds.creation, 900);
}

TEST_F(MachineStoreTest, ListsAsJsonFirst)
{
    addOrb();
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.machines(), box);
    EXPECT_EQ(store.error(), std::nullopt);
    EXPECT_EQ(calls(), QStringList{u"<list><-f><json>"_s});
}

TEST_F(MachineStoreTest, ListsNothingForAnEmptyArray)
{
    addOrb();
    EXPECT_TRUE(waitFor(store.refresh()));
    addOrb({}, u"[]"_s);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_TRUE(store.machines().isEmpty());
    EXPECT_EQ(calls().size(), 2) << "an empty array is an answer, no reason to ask again";
}

TEST_F(MachineStoreTest, EmptiesTheListWhenOrbIsMissing)
{
    addOrb();
    EXPECT_TRUE(waitFor(store.refresh()));
    tools.removeTool(u"orb"_s);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_TRUE(store.machines().isEmpty());
    EXPECT_EQ(store.error(), u"orb is not installed."_s);
}

TEST_F(MachineStoreTest, FallsBackToTheTableSilently)
{
    const QString table = u"printf 'NAME STATE DISTRO VERSION\\nbox running debian 12\\n'"_s;
    for (const QString &asJson : {u"echo no >&2; exit 1"_s, u"echo '{}'"_s, u"echo 'not json'"_s, u":"_s,
                                  u"echo '[]'; exit 2"_s, u"kill -TERM $$"_s}) {
        MachineStore fresh;
        tools.addTool(u"orb"_s, u"if [ \"$2\" = -f ]; then "_s + asJson + u"; exit; fi\n"_s + table);
        EXPECT_TRUE(waitFor(fresh.refresh()));
        EXPECT_EQ(fresh.machines(), QList<Machine>({{u"box"_s, u"running"_s, u"debian"_s, u"12"_s}}))
            << asJson.toStdString();
        EXPECT_EQ(fresh.error(), std::nullopt);
        EXPECT_EQ(calls().last(), u"<list>"_s);
    }
}

TEST_F(MachineStoreTest, KeepsTheOldListWhenListingTimesOut)
{
    MachineStore hasty(MachineTimeLimits{.list = 0.1});
    addOrb();
    MachineStore patient;
    tools.addTool(u"orb"_s, u"[ -e '%1' ] && exec sleep 600; echo '[{\"name\":\"box\",\"state\":\"running\"}]'"_s.arg(
                                tools.path(u"hang"_s)));
    EXPECT_TRUE(waitUntil([&] { return waitFor(hasty.refresh()) && hasty.machines() == box; }));
    tools.addFile(u"hang"_s);
    EXPECT_TRUE(waitFor(hasty.refresh()));
    EXPECT_EQ(hasty.machines(), box);
    EXPECT_EQ(hasty.error(), u"orb list timed out. Is OrbStack running?"_s);
}

TEST_F(MachineStoreTest, ReportsATimeOutEvenWhenTheToolThenEndsWell)
{
    MachineStore hasty(MachineTimeLimits{.list = 0.2});
    tools.addTool(u"orb"_s, u"echo 'box running'\n"_s + TestTools::untilTerminated(0));
    EXPECT_TRUE(waitFor(hasty.refresh()));
    EXPECT_TRUE(hasty.machines().isEmpty());
    EXPECT_EQ(hasty.error(), u"orb list timed out. Is OrbStack running?"_s);
}

TEST_F(MachineStoreTest, ShowsWhatAFailingListingSays)
{
    addOrb();
    EXPECT_TRUE(waitFor(store.refresh()));
    tools.addTool(u"orb"_s, u"echo ' <b>out</b> '; echo 'err' >&2; exit 3"_s);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.machines(), box);
    EXPECT_EQ(store.error(), u"<b>out</b>\nerr"_s);

    addOrb();
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.error(), std::nullopt) << "a good refresh clears the error";
}

TEST_F(MachineStoreTest, HasAnEmptyErrorWhenAFailingListingSaysNothing)
{
    tools.addTool(u"orb"_s, u"exit 1"_s);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.error(), QString());
    EXPECT_TRUE(store.error().has_value());
}

TEST_F(MachineStoreTest, ShowsWhyTheListingCannotStart)
{
    tools.addTool(u"orb"_s, {});
    tools.setInterpreter(u"orb"_s, u"/nonexistent/shell"_s);
    EXPECT_TRUE(waitFor(store.refresh()));
    ASSERT_TRUE(store.error().has_value());
    EXPECT_FALSE(store.error()->isEmpty());
    EXPECT_FALSE(store.error()->contains(u"Could not start"_s))
        << "the description alone: " << store.error()->toStdString();
}

TEST_F(MachineStoreTest, PassesHostileAndHugeTextsOnUnchanged)
{
    const QString huge = tools.addFile(u"huge"_s, QByteArray(1 << 20, 'x') + "<b>\xe2\x80\xae</b>");
    tools.addTool(u"orb"_s, u"cat '%1' >&2; exit 1"_s.arg(huge));
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.error(), QString(1 << 20, u'x') + u"<b>\u202e</b>"_s);
}

TEST_F(MachineStoreTest, TellsOfAChangeOnlyWhenTheListDiffers)
{
    int changes = 0;
    QObject::connect(&store, &MachineStore::machinesChanged, &store, [&] { ++changes; });
    addOrb();
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(changes, 1);
    addOrb({}, u"[{\"name\":\"box\",\"state\":\"stopped\"}]"_s);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(changes, 2);
}

TEST_F(MachineStoreTest, TakesFiveThousandMachines)
{
    QByteArray json = "[";
    for (int index = 0; index < 5000; ++index)
        json += "{\"record\":{\"name\":\"machine-" + QByteArray::number(index) + "\",\"state\":\"running\"}},";
    json.back() = ']';
    tools.addTool(u"orb"_s, u"cat '%1'"_s.arg(tools.addFile(u"list"_s, json)));
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.machines().size(), 5000);
}

TEST_F(MachineStoreTest, LetsTheLaterOfTwoRefreshesDecide)
{
    // The first call waits until the second has answered.
    tools.addTool(u"orb"_s, u"if mkdir '%1' 2>/dev/null; then while [ ! -e '%2' ]; do sleep 0.01; done; echo '[]'\n"
                            "else echo '[{\"name\":\"box\",\"state\":\"running\"}]'; fi"_s.arg(tools.path(u"first"_s),
                                                                                               tools.path(u"go"_s)));
    auto first = store.refresh();
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(tools.path(u"first"_s)); }));
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.machines(), box);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitFor(std::move(first)));
    EXPECT_TRUE(store.machines().isEmpty());
}

TEST_F(MachineStoreTest, LetsTheLaterOfTwoRefreshesDecideTheErrorToo)
{
    const QString broken = u"echo broken >&2; exit 1"_s;
    tools.addTool(u"orb"_s, tools.waitForFile(u"go"_s) + broken);
    auto slow = store.refresh();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 1; }));
    tools.addTool(u"orb"_s, u"[ \"$2\" = -f ] && { echo '[]'; exit; }; "_s + broken);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.error(), std::nullopt);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitFor(std::move(slow)));
    EXPECT_EQ(store.error(), u"broken"_s);

    tools.addTool(u"orb"_s, tools.waitForFile(u"go on"_s) + u"echo '[]'"_s);
    auto slowAgain = store.refresh();
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 4; }));
    tools.addTool(u"orb"_s, broken);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.error(), u"broken"_s);
    tools.addFile(u"go on"_s);
    EXPECT_TRUE(waitFor(std::move(slowAgain)));
    EXPECT_EQ(store.error(), std::nullopt);
}

TEST_F(MachineStoreTest, MayGoAwayWhileItsToolsRun)
{
    const QString ending = tools.waitForFile(u"go"_s) + u"echo '[]'"_s;
    tools.addTool(u"orb"_s, ending);
    int ended = 0;
    for (int operation = 0; operation < 4; ++operation) {
        auto doomed = std::make_unique<MachineStore>();
        if (operation == 0)
            doomed->refresh().then([&ended] { ++ended; });
        else if (operation == 1)
            doomed->create(Distro::ubuntu, u"b"_s);
        else if (operation == 2)
            doomed->simple({u"start"_s, u"b"_s});
        else
            doomed->remove(u"b"_s);
    }
    EXPECT_TRUE(waitUntil([this] { return calls().size() == 4; }));
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return ended == 1; }));
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_TRUE(waitFor(store.refresh())) << "the loop turned long enough for the others to wake up, too";
    EXPECT_EQ(calls().size(), 6) << "nobody went on to a next step";
}

TEST_F(MachineStoreTest, TellsOfAToolThatFloodsAndKeepsTheList)
{
    addOrb();
    EXPECT_TRUE(waitFor(store.refresh()));
    tools.addTool(u"orb"_s, u"yes"_s);
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_EQ(store.error(), u"orb list printed more than 64 MiB and was stopped."_s);
    EXPECT_EQ(store.machines(), box);
}
