#pragma once

// What the tests of the questions before the end share: a guarded window that loses its patience at once.

#include "QuitGuardTest.h"

#include <chrono>

inline constexpr Quitting::Times atOnce{.untilAskedAgain = std::chrono::milliseconds(50),
                                        .untilTheEnd = std::chrono::milliseconds(300)};
/// Goes on whatever it is asked, until what follows is over.
inline const auto ignoring = QStringLiteral("trap '' TERM; echo up\n");

class QuittingTest : public testing::Test
{
protected:
    explicit QuittingTest(Quitting::Times times = atOnce) : guarded(QuitGuard::Closing::quits, times) {}

    TestTools &tools() { return guarded.tools.orbStack.tools(); }

    /// Waits for a question with this title.
    QMessageBox *asked(const QString &title)
    {
        EXPECT_TRUE(waitUntil([&] { return guarded.question() != nullptr && guarded.question()->text() == title; }))
            << (guarded.question() ? guarded.question()->text().toStdString() : "no question");
        return guarded.question();
    }

    void press(const QString &button)
    {
        ASSERT_NE(guarded.question(), nullptr);
        ByName::press(*guarded.question(), button);
    }

    /// Stops a run whose machine stays, to quit; the question that comes then.
    QMessageBox *stopToQuit()
    {
        EXPECT_FALSE(quit());
        press(QStringLiteral("Stop it and quit"));
        EXPECT_TRUE(waitUntil([this] { return !run.isRunning(); }));
        return asked(run.undeletedMachine() + QStringLiteral(" could not be deleted."));
    }

    /// A run that has begun and ends no earlier than `go` is there.
    void startIgnoringRun()
    {
        guarded.startRun(ignoring + tools().waitForFile(QStringLiteral("go")));
        EXPECT_TRUE(waitUntil([this] { return guarded.tools.run.plainText().contains(QStringLiteral("\nup\n")); }));
    }

    /// A container that is being started until `file` is there.
    void startContainer(const QString &file)
    {
        tools().addTool(QStringLiteral("docker"), tools().waitForFile(file));
        guarded.tools.containers.runContainer(QStringLiteral("nginx"), QString(), QString());
    }
    QMessageBox *askedAboutContainer() { return asked(QStringLiteral("A container of nginx is being started.")); }

    /// An `orb` that makes machines and lists them (or not), and whose deletions fail.
    void addOrbThatCannotDelete(bool lists, const QString &beforeItLists = QStringLiteral(":"))
    {
        using namespace Qt::StringLiterals;
        tools().addTool(u"orb"_s,
                        u"case \"$1\" in\n"
                        "create) echo \"$3\" > '%1' ;;\n"
                        "list) %3\nif %2; then printf '[{\"name\":\"%s\"}]' \"$(cat '%1')\"; else echo '[]'; fi ;;\n"
                        "delete) exit 1 ;;\n"
                        "-m) exec sh -s ;;\n"
                        "esac"_s.arg(tools().path(u"made"_s), lists ? u"true"_s : u"false"_s, beforeItLists));
    }

    bool hasBegunToDelete()
    {
        return tools().calls(QStringLiteral("orb")).last().startsWith(QStringLiteral("<delete><-f><sbx-"));
    }

    Guarded guarded;
    RunController &run = guarded.tools.run;
    HistoryStore &history = guarded.tools.history;
};

/// With more patience than a test has, but for quitting without a question.
class PatientQuittingTest : public QuittingTest
{
protected:
    PatientQuittingTest()
        : QuittingTest({.untilAskedAgain = std::chrono::minutes(5), .untilTheEnd = atOnce.untilTheEnd})
    {
    }
};
