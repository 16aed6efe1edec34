#include "MachineStore/MachineStore.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

/// A store over fake tools; limits are far away unless a test shortens them.
class MachineStoreTest : public testing::Test
{
protected:
    /// An `orb` that lists one machine as JSON and does `others` for every other command ($1 being its name).
    void addOrb(const QString &others = {}, const QString &json = u"[{\"name\":\"box\",\"state\":\"running\"}]"_s)
    {
        tools.addTool(u"orb"_s, u"if [ \"$1\" = list ]; then printf '%s' '"_s + json + u"'; exit 0; fi\n"_s + others);
    }

    /// Waits until the operation is over and the refresh after it has changed the list.
    bool waitUntilDone()
    {
        return waitUntil([this] { return !store.busy() && !store.machines().isEmpty(); });
    }

    QStringList calls() const { return tools.calls(u"orb"_s); }

    TestTools tools;
    MachineStore store{MachineTimeLimits{.list = 20, .simple = 20, .deletion = 20, .creation = 20}};
};

const QList<Machine> box{{u"box"_s, u"running"_s, QString(), QString()}};

} // namespace

// ---- Listing

TEST_F(MachineStoreTest, StartsEmpty)
{
    EXPECT_TRUE(store.machines().isEmpty());
    EXPECT_EQ(store.error(), std::nullopt);
    EXPECT_FALSE(store.busy());
    EXPECT_EQ(store.log(), QString());
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
    tools.addTool(u"orb"_s, u"[ -e '%1' ] && exec sleep 60; echo '[{\"name\":\"box\",\"state\":\"running\"}]'"_s.arg(
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

// ---- Creation

TEST_F(MachineStoreTest, CreatesAMachineAndListsItAfterwards)
{
    addOrb(u"echo out; sleep 0.05; echo err >&2"_s);
    store.create(Distro::debian, u"box"_s);
    EXPECT_TRUE(store.busy());
    EXPECT_EQ(store.log(), u"$ orb create debian box\n"_s);
    EXPECT_TRUE(waitUntilDone());
    EXPECT_EQ(store.log(), u"$ orb create debian box\nout\nerr\n\nMachine box is ready.\n"_s);
    EXPECT_EQ(calls(), QStringList({u"<create><debian><box>"_s, u"<list><-f><json>"_s}));
    EXPECT_EQ(store.machines(), box);
}

TEST_F(MachineStoreTest, ChecksTheNameBeforeCreating)
{
    addOrb();
    const QString refusal = u"Use lowercase letters, digits and dashes for the name.\n"_s;
    for (const QString &name : {QString(), QString(32, u'a'), u"-a"_s, u"aB"_s, u"A"_s, u"a.b"_s, u"a_b"_s, u"a b"_s,
                                u"a\n"_s, u"\na"_s, u"\u00e9"_s, u"a\u0663"_s, u"a\r"_s, u"a\u0000"_s, u"a\u202e"_s}) {
        MachineStore fresh;
        fresh.create(Distro::ubuntu, name);
        EXPECT_EQ(fresh.log(), refusal) << name.toStdString();
        EXPECT_FALSE(fresh.busy());
    }
    EXPECT_EQ(calls(), QStringList());
}

TEST_F(MachineStoreTest, AcceptsNamesOfOneAndOf31Characters)
{
    for (const QString &name : {u"a"_s, u"7"_s, u"a-b-"_s, u"abcdefghijklmnopqrstuvwxyz-0123"_s}) {
        addOrb();
        MachineStore fresh;
        fresh.create(Distro::alpine, name);
        EXPECT_TRUE(fresh.busy()) << name.toStdString();
        EXPECT_TRUE(waitUntil([&] { return !fresh.busy(); }));
        EXPECT_TRUE(fresh.log().endsWith(u"\nMachine "_s + name + u" is ready.\n"_s));
        EXPECT_TRUE(waitUntil([&] { return !fresh.machines().isEmpty(); }));
    }
}

TEST_F(MachineStoreTest, RefusesANameThatIsTaken)
{
    addOrb();
    EXPECT_TRUE(waitFor(store.refresh()));
    store.create(Distro::ubuntu, u"box"_s);
    EXPECT_FALSE(store.busy());
    EXPECT_EQ(store.log(), u"A machine named box already exists.\n"_s);
    EXPECT_EQ(calls().size(), 1);
}

TEST_F(MachineStoreTest, ReportsAFailedCreation)
{
    addOrb(u"printf 'no room' >&2; exit 5"_s);
    store.create(Distro::ubuntu, u"b"_s);
    EXPECT_TRUE(waitUntilDone());
    EXPECT_EQ(store.log(), u"$ orb create ubuntu b\nno room\nFailed (exit 5).\n"_s);
}

TEST_F(MachineStoreTest, ReportsACreationThatCannotStart)
{
    addOrb();
    tools.setInterpreter(u"orb"_s, u"/nonexistent/shell"_s);
    store.create(Distro::ubuntu, u"b"_s);
    EXPECT_TRUE(waitUntil([&] { return !store.busy(); }));
    EXPECT_TRUE(store.log().startsWith(u"$ orb create ubuntu b\nCould not start orb: "_s));
    EXPECT_TRUE(store.log().endsWith(u"\n\nFailed (exit -1).\n"_s));
    EXPECT_TRUE(waitUntil([&] { return store.error().has_value(); }));
}

TEST_F(MachineStoreTest, ReportsATimedOutCreationWhateverItsStatus)
{
    for (const int status : {0, 3}) {
        MachineStore hasty(MachineTimeLimits{.creation = 0.2});
        addOrb(TestTools::untilTerminated(status));
        hasty.create(Distro::ubuntu, u"b"_s);
        EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
        EXPECT_EQ(hasty.log(), u"$ orb create ubuntu b\n\nTimed out.\n"_s);
        EXPECT_TRUE(waitUntil([&] { return !hasty.machines().isEmpty(); }));
    }
}

TEST_F(MachineStoreTest, CapsTheLogOfATalkativeCreation)
{
    addOrb(u"head -c 1000000 /dev/zero | tr '\\0' x"_s);
    store.create(Distro::ubuntu, u"b"_s);
    EXPECT_TRUE(waitUntilDone());
    EXPECT_LE(store.log().size(), 200'000);
    EXPECT_GE(store.log().size(), 150'000);
    EXPECT_TRUE(store.log().endsWith(u"x\nMachine b is ready.\n"_s));
}

// ---- Start, stop and deletion

TEST_F(MachineStoreTest, StartsAndStopsWithAnEmptyLog)
{
    addOrb(u"echo noise"_s);
    store.create(Distro::ubuntu, u"b"_s);
    EXPECT_TRUE(waitUntilDone());
    store.simple({u"start"_s, u"box"_s});
    EXPECT_TRUE(store.busy());
    EXPECT_NE(store.log(), QString()) << "it stays until the tool has ended";
    EXPECT_TRUE(waitUntil([&] { return !store.busy() && calls().size() == 4; }));
    EXPECT_EQ(store.log(), QString());
    store.simple({u"stop"_s, u"box"_s});
    EXPECT_TRUE(waitUntil([&] { return !store.busy() && calls().size() == 6; }));
    EXPECT_EQ(calls().mid(2),
              QStringList({u"<start><box>"_s, u"<list><-f><json>"_s, u"<stop><box>"_s, u"<list><-f><json>"_s}));
}

TEST_F(MachineStoreTest, ReportsAFailedStart)
{
    addOrb(u"echo ' out '; echo ' err ' >&2; exit 1"_s);
    store.simple({u"start"_s, u"box"_s});
    EXPECT_TRUE(waitUntilDone());
    EXPECT_EQ(store.log(), u"orb start box failed: out\nerr\n"_s);
}

TEST_F(MachineStoreTest, ReportsAStartThatTimesOutOrCannotStart)
{
    MachineStore hasty(MachineTimeLimits{.simple = 0.2});
    addOrb(u"echo hm\n"_s + TestTools::untilTerminated(0));
    hasty.simple({u"stop"_s, u"box"_s});
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(hasty.log(), u"orb stop box failed: hm\n"_s);

    tools.setInterpreter(u"orb"_s, u"/nonexistent/shell"_s);
    store.simple({u"start"_s, u"box"_s});
    EXPECT_TRUE(waitUntil([&] { return !store.busy(); }));
    EXPECT_TRUE(store.log().startsWith(u"orb start box failed: Could not start orb: "_s));
    EXPECT_TRUE(waitUntil([&] { return store.error().has_value(); }));
}

TEST_F(MachineStoreTest, DeletesAndSaysSo)
{
    addOrb();
    store.remove(u"old"_s);
    EXPECT_TRUE(store.busy());
    EXPECT_TRUE(waitUntilDone());
    EXPECT_EQ(store.log(), u"Deleted old.\n"_s);
    EXPECT_EQ(calls(), QStringList({u"<delete><-f><old>"_s, u"<list><-f><json>"_s}));
}

TEST_F(MachineStoreTest, DeletesWithTheSecondAttempt)
{
    addOrb(u"[ \"$2\" = -f ] && { echo first; exit 1; }; read answer; [ \"$answer\" = y ]"_s);
    store.remove(u"old"_s);
    EXPECT_TRUE(waitUntilDone());
    EXPECT_EQ(store.log(), u"Deleted old.\n"_s);
    EXPECT_EQ(calls(), QStringList({u"<delete><-f><old>"_s, u"<delete><old>"_s, u"<list><-f><json>"_s}));
}

TEST_F(MachineStoreTest, ReportsTheSecondFailureOfADeletion)
{
    addOrb(u"[ \"$2\" = -f ] && { echo first; exit 1; }; echo second >&2; exit 2"_s);
    store.remove(u"old"_s);
    EXPECT_TRUE(waitUntilDone());
    EXPECT_EQ(store.log(), u"Delete failed: second\n"_s);
}

// ---- busy

TEST_F(MachineStoreTest, DoesNothingAtAllWithoutOrb)
{
    store.create(Distro::ubuntu, u"NOT A NAME"_s);
    store.simple({u"start"_s, u"box"_s});
    store.remove(u"box"_s);
    EXPECT_FALSE(store.busy());
    EXPECT_EQ(store.log(), QString());
    EXPECT_EQ(store.error(), std::nullopt);
}

TEST_F(MachineStoreTest, IgnoresEveryRequestWhileBusyAndStillRefreshes)
{
    addOrb(tools.waitForFile(u"go"_s));
    store.simple({u"start"_s, u"box"_s});
    store.simple({u"stop"_s, u"box"_s});
    store.remove(u"box"_s);
    store.create(Distro::ubuntu, u"b"_s);
    store.create(Distro::ubuntu, u"NOT A NAME"_s);
    EXPECT_EQ(store.log(), QString());
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_TRUE(store.busy());
    EXPECT_EQ(store.machines(), box);
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !store.busy() && calls().size() == 3; }));
    EXPECT_EQ(calls().filter(u"box"_s), QStringList{u"<start><box>"_s});
}

TEST_F(MachineStoreTest, WritesTheLogThenIsFreeThenRefreshes)
{
    QStringList order;
    QObject::connect(&store, &MachineStore::logChanged, &store, [&] { order << u"log: "_s + store.log(); });
    QObject::connect(&store, &MachineStore::busyChanged, &store,
                     [&] { order << (store.busy() ? u"busy"_s : u"free"_s); });
    QObject::connect(&store, &MachineStore::machinesChanged, &store, [&] { order << u"machines"_s; });
    addOrb();
    store.remove(u"old"_s);
    EXPECT_TRUE(waitUntilDone());
    EXPECT_EQ(order, QStringList({u"busy"_s, u"log: Deleted old.\n"_s, u"free"_s, u"machines"_s}));
}

// ---- The end

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
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return ended == 1; }));
    EXPECT_TRUE(waitFor(store.refresh()));
    EXPECT_TRUE(waitFor(store.refresh())) << "the loop turned long enough for the others to wake up, too";
    EXPECT_EQ(calls().size(), 6) << "nobody went on to a next step";
}
