#include "RunController/RunController.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

class PackageInstallation : public testing::Test
{
protected:
    void install(const QString &packages, const QString &machine = u"dev"_s, const QString &distro = u"ubuntu"_s,
                 bool timeoutEnabled = false)
    {
        run.installPackages(packages, machine, distro, timeoutEnabled, &history);
    }

    /// The whole transcript, provided that it is one text of the kind `fail`.
    QString failure() const
    {
        if (run.transcript().segmentCount() != 1 || run.transcript().segment(0).kind != OutputKind::fail)
            return {};
        return run.plainText();
    }

    TestTools tools;
    HistoryStore history{std::nullopt};
    RunController run{RunTimeLimits{.script = 0.3}};
    const QString refusal = u"Package names may only contain letters, digits and . + _ : = ~ -\n"_s;
};

} // namespace

TEST_F(PackageInstallation, RunsTheGeneratedScriptAndLeavesTheUsersAlone)
{
    tools.addTool(u"orb"_s, u"cat > '%1'"_s.arg(tools.path(u"input"_s)));
    run.setScript(u"my own"_s);
    install(u"git, curl"_s);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    QFile input(tools.path(u"input"_s));
    ASSERT_TRUE(input.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(input.readAll()), RunController::packageScript(u"ubuntu"_s, {u"git"_s, u"curl"_s}));
    EXPECT_EQ(tools.calls(u"orb"_s), QStringList{u"<-m><dev><bash><-s>"_s});
    ASSERT_EQ(history.entries().size(), 1);
    EXPECT_EQ(history.entries().first().command, u"install packages: git curl"_s);
    EXPECT_EQ(history.entries().first().machine, u"dev"_s);
    EXPECT_EQ(run.script(), u"my own"_s);
}

TEST_F(PackageInstallation, UsesShAndApkInAlpine)
{
    tools.addTool(u"orb"_s, u"cat"_s);
    install(u"git"_s, u"small"_s, u"alpine"_s);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    EXPECT_EQ(tools.calls(u"orb"_s), QStringList{u"<-m><small><sh><-s>"_s});
    EXPECT_TRUE(run.plainText().contains(u"$S apk add git\n"_s));
}

TEST_F(PackageInstallation, HonoursTheTimeLimitOfTheScreen)
{
    tools.addTool(u"orb"_s, TestTools::untilTerminated(1));
    install(u"git"_s, u"dev"_s, u"ubuntu"_s, true);
    EXPECT_TRUE(waitUntil([&] { return !run.isRunning(); }));
    EXPECT_EQ(history.entries().first().note, u"timed out"_s);
}

TEST_F(PackageInstallation, RefusesAnEmptyFieldAndWhateverIsNoName)
{
    tools.addTool(u"orb"_s, {});
    for (const QString &packages :
         {QString(), u" , ,, "_s, u"-rf"_s, u"git a;b"_s, u"$(x)"_s, u"git\ncurl"_s, u"git\n"_s, u"git\tcurl"_s}) {
        run.clearTranscript();
        install(packages);
        EXPECT_EQ(failure(), refusal) << packages.toStdString();
    }
    EXPECT_FALSE(run.isRunning());
    EXPECT_EQ(tools.calls(u"orb"_s), QStringList());
    EXPECT_TRUE(history.entries().isEmpty());
}

TEST_F(PackageInstallation, RefusesADistributionItCannotServe)
{
    tools.addTool(u"orb"_s, {});
    install(u"git"_s, u"dev"_s, u"Fedora"_s);
    EXPECT_EQ(failure(),
              u"Package shortcut supports Ubuntu, Debian and Alpine machines only (this one is Fedora).\n"_s);
    EXPECT_TRUE(history.entries().isEmpty());
    run.clearTranscript();
    install(u"a;b"_s, u"dev"_s, u"Fedora"_s);
    EXPECT_EQ(failure(), refusal) << "the names are checked first";
    run.clearTranscript();
    install(u"git"_s, u"dev"_s, QString());
    EXPECT_EQ(failure(), u"Package shortcut supports Ubuntu, Debian and Alpine machines only (this one is ).\n"_s);
}

TEST_F(PackageInstallation, DoesNothingWithoutAMachine)
{
    install(u"a;b"_s, QString());
    EXPECT_TRUE(run.transcript().isEmpty());
    EXPECT_FALSE(run.isRunning());
}

TEST_F(PackageInstallation, SaysSoWhenOrbIsMissing)
{
    install(u"git"_s);
    EXPECT_EQ(failure(), u"orb was not found. Install OrbStack first.\n"_s);
}
