#include "MachineStoreTest.h"

using namespace Qt::StringLiterals;

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

TEST_F(MachineStoreTest, TakesANameForAnotherInOtherLetterCase)
{
    addOrb({}, u"[{\"name\":\"BOX\",\"state\":\"running\"}]"_s);
    EXPECT_TRUE(waitFor(store.refresh()));
    store.create(Distro::ubuntu, u"box"_s);
    EXPECT_TRUE(store.busy());
    EXPECT_TRUE(waitUntil([this] { return !store.busy(); }));
    EXPECT_EQ(calls().value(1), u"<create><ubuntu><box>"_s);
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
    MachineStore hasty(MachineTimeLimits{.simple = 1});
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

TEST_F(MachineStoreTest, EndsADeletionThatHangsByTheTimeLimitOfDeletions)
{
    MachineStore hasty(MachineTimeLimits{.list = farLimit, .simple = farLimit, .deletion = 1, .creation = farLimit});
    addOrb(u"echo hm\n"_s + TestTools::untilTerminated(0));
    hasty.remove(u"old"_s);
    EXPECT_TRUE(waitUntil([&] { return !hasty.busy(); }));
    EXPECT_EQ(hasty.log(), u"Delete failed: hm\n"_s);
    EXPECT_TRUE(waitUntil([&] { return !hasty.machines().isEmpty(); }));
    EXPECT_EQ(calls(), QStringList({u"<delete><-f><old>"_s, u"<delete><old>"_s, u"<list><-f><json>"_s}));
}

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
    const auto orderOf = [](const std::function<void(MachineStore &)> &begin) {
        MachineStore fresh;
        QStringList order;
        QObject::connect(&fresh, &MachineStore::logChanged, &fresh, [&] { order << u"log: "_s + fresh.log(); });
        QObject::connect(&fresh, &MachineStore::busyChanged, &fresh,
                         [&] { order << (fresh.busy() ? u"busy"_s : u"free"_s); });
        QObject::connect(&fresh, &MachineStore::machinesChanged, &fresh, [&] { order << u"machines"_s; });
        begin(fresh);
        EXPECT_TRUE(waitUntil([&] { return !fresh.machines().isEmpty(); }));
        return order;
    };
    addOrb(u"[ $1 != start ]"_s);
    EXPECT_EQ(orderOf([](MachineStore &fresh) { fresh.remove(u"old"_s); }),
              QStringList({u"busy"_s, u"log: Deleted old.\n"_s, u"free"_s, u"machines"_s}));
    EXPECT_EQ(orderOf([](MachineStore &fresh) { fresh.simple({u"start"_s, u"box"_s}); }),
              QStringList({u"busy"_s, u"log: orb start box failed: \n"_s, u"free"_s, u"machines"_s}));
    const QString command = u"$ orb create debian new\n"_s;
    EXPECT_EQ(orderOf([](MachineStore &fresh) { fresh.create(Distro::debian, u"new"_s); }),
              QStringList({u"busy"_s, u"log: "_s + command, u"log: "_s + command + u"\nMachine new is ready.\n"_s,
                           u"free"_s, u"machines"_s}));
}

TEST_F(MachineStoreTest, LeavesTheErrorToTheListingThatFollowsAnOperation)
{
    addOrb(u"echo broken >&2; exit 1"_s);
    int changes = 0;
    QObject::connect(&store, &MachineStore::errorChanged, &store, [&] { ++changes; });
    EXPECT_TRUE(waitFor(store.create(Distro::debian, u"new"_s)));
    EXPECT_TRUE(waitFor(store.simple({u"stop"_s, u"box"_s})));
    EXPECT_TRUE(waitFor(store.remove(u"box"_s)));
    EXPECT_EQ(store.log(), u"Delete failed: broken\n"_s);
    EXPECT_EQ(changes, 0);
}
