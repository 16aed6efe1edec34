#include "RunController/RunController.h"
#include "RunController/ScriptComposition.h"

#include "OrbCLI/OrbCLI.h"
#include "Support/Waiting.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace ScriptComposition;

TEST(ScriptComposition, ChoosesShForWhateverIsAlpineAndBashForEverythingElse)
{
    EXPECT_EQ(shellFor(u"alpine"_s), u"sh"_s);
    EXPECT_EQ(shellFor(u"Alpine3"_s), u"sh"_s);
    EXPECT_EQ(shellFor(u"my-ALPINE-edge"_s), u"sh"_s);
    EXPECT_EQ(shellFor(u"ubuntu"_s), u"bash"_s);
    EXPECT_EQ(shellFor(u"alpin"_s), u"bash"_s);
    EXPECT_EQ(shellFor(QString()), u"bash"_s);
}

TEST(ScriptComposition, QuotesForTheShell)
{
    EXPECT_EQ(quoted(u"/Users/o'neil/x"_s), u"'/Users/o'\\''neil/x'"_s);
    EXPECT_EQ(quoted(QString()), u"''"_s);
    EXPECT_EQ(quoted(u"''"_s), u"''\\'''\\'''"_s);
    EXPECT_EQ(quoted(u"$(x) `y` \"z\" \\ \n"_s), u"'$(x) `y` \"z\" \\ \n'"_s);
}

TEST(ScriptComposition, QuotesSoThatARealShellReadsTheSameTextBack)
{
    const QString hostile =
        u"it's $HOME `id` \"x\" \\n * ? [a] ~ # ! ; & | < > (y) {z}\n\ttwo ''' lines \u00e9\u202e"_s;
    const std::optional<CLIResult> result =
        waitFor(OrbCLI::run(u"/bin/sh"_s, {u"-c"_s, u"printf %s "_s + quoted(hostile)}, std::nullopt, 20));
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->stdout, hostile);
}

TEST(ScriptComposition, EndsTheScriptWithOneLineFeed)
{
    EXPECT_EQ(compose(u"ls"_s, std::nullopt), u"ls\n"_s);
    EXPECT_EQ(compose(u"ls\n"_s, std::nullopt), u"ls\n"_s);
    EXPECT_EQ(compose(u"ls\n\n"_s, std::nullopt), u"ls\n\n"_s);
    EXPECT_EQ(compose(u"ls\r"_s, std::nullopt), u"ls\r\n"_s);
    EXPECT_EQ(compose(u"ls\r\n"_s, std::nullopt), u"ls\r\n"_s);
    EXPECT_EQ(compose(QString(), std::nullopt), u"\n"_s);
}

TEST(ScriptComposition, EntersTheFolderFirst)
{
    EXPECT_EQ(compose(u"ls"_s, u"/Users/o'neil/x"_s),
              u"cd -- '/Users/o'\\''neil/x' 2>/dev/null || cd -- '/mnt/mac/Users/o'\\''neil/x'"
              u" || { echo 'Cannot open the shared folder in the machine' >&2; exit 97; }\nls\n"_s);
    EXPECT_EQ(compose(QString(), u"/a"_s),
              u"cd -- '/a' 2>/dev/null || cd -- '/mnt/mac/a'"
              u" || { echo 'Cannot open the shared folder in the machine' >&2; exit 97; }\n"_s)
        << "an empty script needs no second line feed";
}

TEST(ScriptComposition, EndsInARealShellWithStatus97WhenTheFolderCannotBeEntered)
{
    const std::optional<CLIResult> result =
        waitFor(OrbCLI::run(u"/bin/sh"_s, {u"-s"_s}, compose(u"echo never"_s, u"/nonexistent/o'neil"_s), 20));
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->status, 97);
    EXPECT_EQ(result->stdout, QString());
    EXPECT_TRUE(result->stderr.endsWith(u"Cannot open the shared folder in the machine\n"_s));
}

TEST(ScriptComposition, EchoesTheCommandLine)
{
    EXPECT_EQ(echoedCommand(u"dev"_s, u"bash"_s, u"/Users/ann/p"_s),
              u"$ orb -m dev bash -s   (folder: /Users/ann/p)\n"_s);
    EXPECT_EQ(echoedCommand(u"dev"_s, u"sh"_s, std::nullopt), u"$ orb -m dev sh -s\n"_s);
    EXPECT_EQ(echoedCommand(u"dev"_s, u"sh"_s, u"/o'neil"_s), u"$ orb -m dev sh -s   (folder: /o'neil)\n"_s);
}

TEST(ScriptComposition, PartsPackagesAtBlanksAndCommas)
{
    EXPECT_EQ(packagesIn(u"git, curl"_s), QStringList({u"git"_s, u"curl"_s}));
    EXPECT_EQ(packagesIn(u" ,git,,curl vim , "_s), QStringList({u"git"_s, u"curl"_s, u"vim"_s}));
    EXPECT_EQ(packagesIn(u" , ,, "_s), QStringList());
    EXPECT_EQ(packagesIn(QString()), QStringList());
    EXPECT_EQ(packagesIn(u"git\tcurl\nvim"_s), QStringList({u"git\tcurl\nvim"_s})) << "nothing else parts them";
}

TEST(ScriptComposition, AcceptsPackageNamesAsAWholeOnly)
{
    EXPECT_TRUE(arePackageNamesValid(
        {u"python3.11"_s, u"libfoo=1.2~b"_s, u"g++"_s, u"a"_s, u"0ad"_s, u"libc6:i386"_s, u"A_b-c"_s}));
    for (const QString &name : {u"-rf"_s, u"a;b"_s, u"$(x)"_s, QString(), u"git\n"_s, u"git\ncurl"_s, u".x"_s, u"+x"_s,
                                u"a/b"_s, u"gît"_s, u"git\r"_s, u"\u0663"_s, u"a\u0000"_s, u"a*"_s, u"a\u202e"_s})
        EXPECT_FALSE(arePackageNamesValid({name})) << name.toStdString();
    EXPECT_FALSE(arePackageNamesValid({u"git"_s, u"-y"_s}));
    EXPECT_FALSE(arePackageNamesValid({}));
}

TEST(ScriptComposition, WritesTheInstallationForEachSystem)
{
    const QString first = u"if [ \"$(id -u)\" = 0 ]; then S=\"\"; else S=sudo; fi\n"_s;
    const QString apt = first + u"$S env DEBIAN_FRONTEND=noninteractive apt-get update && "
                                u"$S env DEBIAN_FRONTEND=noninteractive apt-get install -y git curl\n"_s;
    const QStringList packages{u"git"_s, u"curl"_s};
    EXPECT_EQ(RunController::packageScript(u"ubuntu"_s, packages), apt);
    EXPECT_EQ(RunController::packageScript(u"Ubuntu"_s, packages), apt);
    EXPECT_EQ(RunController::packageScript(u"DEBIAN"_s, packages), apt);
    EXPECT_EQ(RunController::packageScript(u"alpine-debian"_s, packages), apt) << "apt is tested first";
    EXPECT_EQ(RunController::packageScript(u"alpine3"_s, packages), first + u"$S apk add git curl\n"_s);
    EXPECT_EQ(RunController::packageScript(u"fedora"_s, packages), std::nullopt);
    EXPECT_EQ(RunController::packageScript(QString(), packages), std::nullopt);
}
