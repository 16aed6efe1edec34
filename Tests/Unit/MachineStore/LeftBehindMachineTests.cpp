#include "MachineStoreTest.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace
{

const QString listsIt = u"[{\"name\":\"sbx-12ab34\",\"state\":\"running\"}]"_s;
const QString told = u"sbx-12ab34 was left behind by a run that was cut off.\n"_s;

/// A support folder in which an earlier start of the program has left a name.
class LeftBehindMachine : public MachineStoreTest
{
protected:
    LeftBehindMachine() { EXPECT_TRUE(machines.writeDown(u"sbx-12ab34"_s).isOpen()); }

    bool isWrittenDown() const { return !machines.leftBehind().isEmpty(); }

    const DisposableMachines machines{tools.path(u"support"_s)};
};

} // namespace

TEST_F(LeftBehindMachine, IsToldInTheLogOnceItIsListed)
{
    MachineStore next({}, machines);
    addOrb();
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.log(), QString()) << "it is not listed yet, but its creation may go on";
    EXPECT_TRUE(isWrittenDown());
    addOrb({}, listsIt);
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.log(), told);
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.log(), told) << "once";
    EXPECT_TRUE(isWrittenDown()) << "and after another start again, as long as it is there";
}

TEST_F(LeftBehindMachine, IsToldByAListingInTheTableFormToo)
{
    MachineStore next({}, machines);
    tools.addTool(u"orb"_s, u"[ \"$2\" != -f ] && echo 'sbx-12ab34 running'"_s);
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.log(), told);
}

TEST_F(LeftBehindMachine, IsToldOnlyWhenTheLogIsNoLongerAnOperations)
{
    MachineStore next({}, machines);
    addOrb(u"printf half; "_s + tools.waitForFile(u"go"_s) + u"printf ' a line'"_s, listsIt);
    next.create(Distro::debian, u"box"_s);
    EXPECT_TRUE(waitUntil([&] { return next.log().endsWith(u"half"_s); }));
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.machines().size(), 1) << "it is listed meanwhile";
    tools.addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return next.log().endsWith(told); }));
    EXPECT_EQ(next.log(), u"$ orb create debian box\nhalf a line\nMachine box is ready.\n"_s + told);
}

TEST_F(LeftBehindMachine, IsStruckOutWhenItIsDeleted)
{
    MachineStore next({}, machines);
    addOrb(u"exit 1"_s, listsIt);
    EXPECT_TRUE(waitFor(next.refresh()));
    next.remove(u"sbx-12ab34"_s);
    EXPECT_TRUE(waitUntil([&] { return !next.busy(); }));
    EXPECT_TRUE(next.log().startsWith(u"Delete failed: "_s));
    EXPECT_TRUE(isWrittenDown()) << "it is still there";
    addOrb(u":"_s, listsIt);
    next.remove(u"sbx-12ab34"_s);
    EXPECT_TRUE(waitUntil([&] { return !next.busy(); }));
    EXPECT_EQ(next.log(), u"Deleted sbx-12ab34.\n"_s);
    EXPECT_FALSE(isWrittenDown());
}

TEST_F(LeftBehindMachine, IsStruckOutWhenItIsGoneForLongerThanACreationTakes)
{
    QFile file(tools.path(u"support"_s) + u"/Tidewell/Disposable machines/sbx-12ab34"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-840), QFileDevice::FileModificationTime));
    addOrb();
    {
        MachineStore next({}, machines);
        EXPECT_TRUE(waitFor(next.refresh()));
        EXPECT_TRUE(isWrittenDown());
    }
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-901), QFileDevice::FileModificationTime));
    MachineStore next({}, machines);
    tools.addTool(u"orb"_s, u"exit 1"_s);
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_TRUE(isWrittenDown()) << "a listing that fails tells nothing";
    addOrb();
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_FALSE(isWrittenDown());
    EXPECT_EQ(next.log(), QString());
}

TEST_F(LeftBehindMachine, IsNoMachineOfARunThatGoesOnElsewhere)
{
    const FileDescriptor elsewhere = machines.writeDown(u"sbx-000001"_s);
    MachineStore next({}, machines);
    addOrb({}, u"[{\"name\":\"sbx-000001\",\"state\":\"running\"}]"_s);
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.log(), QString());
}

TEST_F(LeftBehindMachine, IsToldAsSoonAsTheProgramThatLeftItHasEnded)
{
    machines.strikeOut(u"sbx-12ab34"_s);
    FileDescriptor ending = machines.writeDown(u"sbx-12ab34"_s);
    MachineStore next({}, machines);
    addOrb({}, listsIt);
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.log(), QString()) << "its run may go on";
    ending.close();
    EXPECT_TRUE(machines.writeDown(u"sbx-000001"_s).isOpen());
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.log(), told);
    addOrb({}, u"[{\"name\":\"sbx-12ab34\",\"state\":\"running\"},{\"name\":\"sbx-000001\",\"state\":\"running\"}]"_s);
    EXPECT_TRUE(waitFor(next.refresh()));
    EXPECT_EQ(next.log(), told) << "what a run of this very program leaves is for the next start";
}

TEST_F(MachineStoreTest, NamesTheOperationWhileItGoesOn)
{
    addOrb(u"exit 1"_s);
    EXPECT_EQ(store.operation(), QString());
    store.create(Distro::debian, u"new"_s);
    EXPECT_EQ(store.operation(), u"The machine new is being created."_s);
    EXPECT_TRUE(waitUntil([&] { return !store.busy(); }));
    EXPECT_EQ(store.operation(), QString());
    store.simple({u"start"_s, u"box"_s});
    EXPECT_EQ(store.operation(), u"The machine box is being started."_s);
    EXPECT_TRUE(waitUntil([&] { return !store.busy(); }));
    store.simple({u"stop"_s, u"box"_s});
    EXPECT_EQ(store.operation(), u"The machine box is being stopped."_s);
    EXPECT_TRUE(waitUntil([&] { return !store.busy(); }));
    store.remove(u"box"_s);
    EXPECT_EQ(store.operation(), u"The machine box is being deleted."_s);
    EXPECT_TRUE(waitUntil([&] { return !store.busy(); }));
}
