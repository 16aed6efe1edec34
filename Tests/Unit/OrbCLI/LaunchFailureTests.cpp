#include "StreamRecording.h"
#include "Support/TestTools.h"
#include "Unit/Process/DescriptorRoom.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace
{

void writeFile(const QString &path, const QByteArray &content, bool isExecutable)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    const QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner;
    ASSERT_TRUE(file.setPermissions(isExecutable ? permissions | QFile::ExeOwner : permissions));
}

/// Both entrances must tell the same failure, whatever input and time limit were asked for.
void expectLaunchFailure(const QString &tool, const QString &name, const QStringList &arguments = {})
{
    const auto recording = record(tool, arguments, u"input"_s, 5);
    EXPECT_FALSE(recording->hasEnded());
    ASSERT_TRUE(recording->handle->launchError());
    const QString line = u"Could not start "_s + name + u": "_s + *recording->handle->launchError() + u'\n';
    recording->handle->cancel(); // there is nothing to cancel
    ASSERT_TRUE(recording->waitForEnd());
    ASSERT_EQ(recording->chunks.size(), 1U);
    EXPECT_EQ(recording->chunks[0].text, line);
    EXPECT_TRUE(recording->chunks[0].isError);
    EXPECT_EQ(recording->status, -1);
    EXPECT_EQ(recording->exits, 1);
    EXPECT_EQ(recording->handleAtExit, recording->handle);
    EXPECT_FALSE(recording->handle->timedOut());
    EXPECT_FALSE(recording->foreignThread);

    const auto result = waitFor(OrbCLI::run(tool, arguments, std::nullopt, 5));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, -1);
    EXPECT_EQ(result->stdout, QString());
    EXPECT_EQ(result->stderr, line);
    EXPECT_EQ(result->launchError, recording->handle->launchError());
    EXPECT_FALSE(result->timedOut);
}

} // namespace

TEST(LaunchFailure, IsToldForAToolThatDoesNotExist)
{
    TestTools tools;
    expectLaunchFailure(tools.path(u"missing tool"_s), u"missing tool"_s);
    EXPECT_EQ(record(tools.path(u"missing"_s))->handle->launchError(), u"No such file or directory"_s);
}

TEST(LaunchFailure, IsToldForADirectory)
{
    TestTools tools;
    ASSERT_TRUE(QDir().mkpath(tools.path(u"folder"_s)));
    expectLaunchFailure(tools.path(u"folder"_s), u"folder"_s);
    expectLaunchFailure(tools.path(u"folder/"_s), u"folder"_s);
}

TEST(LaunchFailure, IsToldForADanglingLink)
{
    TestTools tools;
    ASSERT_TRUE(QFile::link(tools.path(u"missing"_s), tools.path(u"link"_s)));
    expectLaunchFailure(tools.path(u"link"_s), u"link"_s);
}

TEST(LaunchFailure, IsToldForAFileThatIsNotExecutable)
{
    TestTools tools;
    writeFile(tools.path(u"plain"_s), "#!/bin/sh\necho ran\n", false);
    expectLaunchFailure(tools.path(u"plain"_s), u"plain"_s);
}

TEST(LaunchFailure, IsToldForAScriptWithAMissingInterpreter)
{
    TestTools tools;
    writeFile(tools.path(u"orphan"_s), "#!/nonexistent/interpreter\necho ran\n", true);
    expectLaunchFailure(tools.path(u"orphan"_s), u"orphan"_s);
}

TEST(LaunchFailure, IsToldForAFileThatIsNoProgramAndNoShellIsTried)
{
    TestTools tools;
    writeFile(tools.path(u"text"_s), "echo ran\n", true);
    expectLaunchFailure(tools.path(u"text"_s), u"text"_s);
}

TEST(LaunchFailure, IsToldForAnEmptyPath)
{
    expectLaunchFailure(QString(), QString());
}

TEST(LaunchFailure, IsToldForAnArgumentThatTheSystemWouldCut)
{
    TestTools tools;
    expectLaunchFailure(tools.addTool(u"echoes"_s, u"echo ran"_s), u"echoes"_s, {u"a"_s + QChar(0) + u"b"_s});
}

TEST(LaunchFailure, IsToldForArgumentsThatAreTooLong)
{
    TestTools tools;
    expectLaunchFailure(tools.addTool(u"echoes"_s, u"echo ran"_s), u"echoes"_s, {QString(20'000'000, u'x')});
}

TEST(LaunchFailure, IsToldWhenNoDescriptorIsLeft)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer opens pipes of its own to look at memory";
#endif
    TestTools tools;
    const QString tool = tools.addTool(u"quiet"_s, u"exit 0"_s);
    for (int count = 0; count < 6; ++count) { // neither the engine's own pipe nor all of a child's, one after the other
        std::shared_ptr<StreamRecording> recording;
        {
            const DescriptorRoom room(count);
            recording = record(tool, {}, u"input"_s);
        }
        ASSERT_TRUE(recording->waitForEnd());
        EXPECT_EQ(recording->handle->launchError(), u"Too many open files"_s) << count;
        EXPECT_EQ(recording->errors, u"Could not start quiet: Too many open files\n"_s);
        EXPECT_EQ(recording->status, -1);
    }
    const auto recording = record(tool);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->status, 0);
}
