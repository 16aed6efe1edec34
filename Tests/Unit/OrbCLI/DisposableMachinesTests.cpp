#include "OrbCLI/DisposableMachines.h"

#include "Support/TestTools.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>

using namespace Qt::StringLiterals;

namespace
{

QStringList namesIn(const QList<DisposableMachines::LeftBehind> &machines)
{
    QStringList names;
    for (const DisposableMachines::LeftBehind &machine : machines)
        names << machine.name;
    return names;
}

class DisposableMachinesTest : public testing::Test
{
protected:
    TestTools tools;
    const QString support = tools.path(u"support"_s);
    const QString folder = support + u"/Tidewell/Disposable machines"_s;
    const DisposableMachines machines{support};
};

} // namespace

TEST_F(DisposableMachinesTest, AreLeftBehindOnceTheirRunIsCutOff)
{
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-2);
    {
        const FileDescriptor first = machines.writeDown(u"sbx-000001"_s);
        const FileDescriptor second = machines.writeDown(u"sbx-abcdef"_s);
        EXPECT_TRUE(first.isOpen());
        EXPECT_TRUE(QFile::exists(folder + u"/sbx-000001"_s)) << "it is written down before there is a machine";
        EXPECT_TRUE(machines.leftBehind().isEmpty()) << "their runs go on";
        EXPECT_TRUE(DisposableMachines(support).leftBehind().isEmpty()) << "and for other programs, too";
    }
    EXPECT_EQ(namesIn(machines.leftBehind()), QStringList({u"sbx-000001"_s, u"sbx-abcdef"_s}));
    EXPECT_EQ(namesIn(machines.leftBehind()), QStringList({u"sbx-000001"_s, u"sbx-abcdef"_s}))
        << "looking takes nothing";
    EXPECT_GE(machines.leftBehind().first().writtenDown, before);
    EXPECT_LE(machines.leftBehind().first().writtenDown, QDateTime::currentDateTimeUtc());
}

TEST_F(DisposableMachinesTest, AreStruckOutOneByOne)
{
    for (const QString &name : {u"sbx-000001"_s, u"sbx-000002"_s})
        EXPECT_TRUE(machines.writeDown(name).isOpen());
    machines.strikeOut(u"sbx-000001"_s);
    machines.strikeOut(u"sbx-000001"_s);
    EXPECT_EQ(namesIn(machines.leftBehind()), QStringList{u"sbx-000002"_s});
    machines.strikeOut(u"sbx-000002"_s);
    EXPECT_TRUE(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());
}

TEST_F(DisposableMachinesTest, TouchNoFileOfAnotherName)
{
    EXPECT_TRUE(machines.writeDown(u"sbx-000001"_s).isOpen());
    const QStringList others{u"history.json"_s, u"sbx-12345"_s, u"sbx-1234567"_s, u"sbx-ABCDEF"_s, u".sbx-000002"_s};
    for (const QString &other : others)
        EXPECT_TRUE(QFile(folder + u'/' + other).open(QIODevice::WriteOnly));
    EXPECT_EQ(namesIn(machines.leftBehind()), QStringList{u"sbx-000001"_s});
    EXPECT_TRUE(QFile(support + u"/Tidewell/history.json"_s).open(QIODevice::WriteOnly));
    for (const QString &name : others + QStringList{u"../history.json"_s, QString(), u"."_s})
        machines.strikeOut(name);
    EXPECT_TRUE(QFile::exists(support + u"/Tidewell/history.json"_s));
    for (const QString &other : others)
        EXPECT_TRUE(QFile::exists(folder + u'/' + other)) << other.toStdString();
    EXPECT_FALSE(machines.writeDown(u"../sbx-000003"_s).isOpen());
}

TEST_F(DisposableMachinesTest, AreNotKeptWithoutAFolderOrInOneThatCannotBeMade)
{
    EXPECT_FALSE(DisposableMachines().writeDown(u"sbx-000001"_s).isOpen());
    DisposableMachines().strikeOut(u"sbx-000001"_s);
    EXPECT_TRUE(DisposableMachines().leftBehind().isEmpty());
    EXPECT_FALSE(DisposableMachines(std::nullopt).writeDown(u"sbx-000001"_s).isOpen());

    const DisposableMachines blocked(tools.addFile(u"file"_s));
    EXPECT_FALSE(blocked.writeDown(u"sbx-000001"_s).isOpen());
    EXPECT_TRUE(blocked.leftBehind().isEmpty());
}

TEST_F(DisposableMachinesTest, AreWrittenDownInTheirOwnFolderAloneForTheirOwnerAlone)
{
    const FileDescriptor first = machines.writeDown(u"sbx-000001"_s);
    EXPECT_EQ(QFile::permissions(folder + u"/sbx-000001"_s),
              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    // Where the name is taken by something else, what was begun stays, hidden.
    ASSERT_TRUE(QDir().mkpath(folder + u"/sbx-000002"_s));
    EXPECT_FALSE(machines.writeDown(u"sbx-000002"_s).isOpen());
    EXPECT_EQ(QDir(support + u"/Tidewell"_s).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{u"Disposable machines"_s});
    EXPECT_EQ(namesIn(machines.leftBehind()), QStringList());
}

TEST_F(DisposableMachinesTest, AreNotWrittenDownWhileAnotherProgramWritesTheSameName)
{
    ASSERT_TRUE(QDir().mkpath(folder));
    const FileDescriptor other(
        ::open(QFile::encodeName(folder + u"/.sbx-000001"_s).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(other.number(), LOCK_EX | LOCK_NB), 0);
    EXPECT_FALSE(machines.writeDown(u"sbx-000001"_s).isOpen());
    EXPECT_FALSE(QFile::exists(folder + u"/sbx-000001"_s));
}
