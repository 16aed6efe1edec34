#include "Screens/ContentView/Screens/Run/RunViewSteps.h"

TEST(RunView, OffersPackagesOnlyForAMachineOfTheUsersOwn)
{
    TestWindow window;
    confirmDisposable();
    ContentView &content = window.showRunning({u"box"_s});
    auto *packages = find<QLineEdit>(content, packagesField);
    const auto offered = [&content] { return isOffered(content, u"Install packages"_s); };
    EXPECT_LE(packages->width(), 240);
    EXPECT_FALSE(offered());
    packages->setText(u" \t "_s);
    EXPECT_FALSE(offered());
    packages->setText(u" git "_s);
    EXPECT_TRUE(offered());
    toggle(content, u"Disposable mode"_s)->click();
    EXPECT_FALSE(offered());
    toggle(content, u"Disposable mode"_s)->click();
    EXPECT_TRUE(offered());

    window.run.setScript(u"exec sleep 600"_s);
    press(content, u"Run"_s);
    EXPECT_FALSE(offered());
    find<QPushButton>(content, u"Stop"_s, u"Stop the run"_s)->click();
    EXPECT_TRUE(waitUntil(offered));

    window.orbStack.setMachines({});
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_FALSE(offered());
    window.orbStack.setMachines({u"box"_s});
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_TRUE(offered());
    window.orbStack.setRunning(false);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_FALSE(offered());
}

TEST(RunView, InstallsPackagesUnderTheTimeLimitThatIsChosen)
{
    TestWindow window(true, RunTimeLimits{.script = 0.3});
    ContentView &content = window.showRunning({u"box"_s});
    // Once there is a file "go" it ends by itself, though not within the limit.
    TestTools &tools = window.orbStack.tools();
    tools.addTool(u"orb"_s, u"case $1 in -m) sleep 0.6; [ -e '%1' ] || exec sleep 600;; list) cat '%2';; esac"_s.arg(
                                tools.path(u"go"_s), tools.path(u"machines"_s)));
    find<QLineEdit>(content, packagesField)->setText(u"git"_s);
    const auto noteOfAnInstallation = [&] {
        const qsizetype runs = window.history.entries().size();
        press(content, u"Install packages"_s);
        EXPECT_TRUE(waitUntil([&] { return window.history.entries().size() == runs + 1; }));
        EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
        return window.history.entries().first().note;
    };
    EXPECT_EQ(noteOfAnInstallation(), u"timed out"_s);
    toggle(content, u"10 minute time limit"_s)->click();
    tools.addFile(u"go"_s);
    EXPECT_EQ(noteOfAnInstallation(), QString());
    QFile::remove(tools.path(u"go"_s));
    toggle(content, u"10 minute time limit"_s)->click();
    EXPECT_EQ(noteOfAnInstallation(), u"timed out"_s);
}

TEST(RunView, InstallsPackagesAsTheSelectedMachinesDistributionDoes)
{
    TestWindow window;
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(R"([{"name":"box","state":"running","image":{"distro":"debian"}},
                                       {"name":"small","state":"running","image":{"distro":"alpine"}}])");
    ContentView &content = window.show();
    ASSERT_TRUE(waitUntil([&] { return window.machines.machines().size() == 2; }));
    TestTools &tools = window.orbStack.tools();
    tools.addTool(u"orb"_s, u"cd '%1' || exit 1\ncase $1 in -m) cat > input;; list) cat machines;; esac"_s.arg(
                                tools.path(u"."_s)));
    find<QLineEdit>(content, packagesField)->setText(u"git"_s);
    const auto installedIn = [&](int machine) {
        find<MachinePicker>(content, u"Machine"_s)->setCurrentIndex(machine);
        press(content, u"Install packages"_s);
        EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
        QFile input(tools.path(u"input"_s));
        EXPECT_TRUE(input.open(QIODevice::ReadOnly));
        return QString::fromUtf8(input.readAll());
    };
    EXPECT_TRUE(installedIn(1).endsWith(u"\n$S apk add git\n"_s));
    EXPECT_EQ(window.orbStack.calls(u"<-m><small><sh><-s>"_s), 1);
    EXPECT_TRUE(installedIn(0).endsWith(u" apt-get install -y git\n"_s));
    EXPECT_EQ(window.orbStack.calls(u"<-m><box><bash><-s>"_s), 1);
}

TEST(RunView, InstallsPackagesAndLeavesTheScriptAlone)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    window.run.setScript(u"mine"_s);
    auto *packages = find<QLineEdit>(content, packagesField);
    packages->setText(u"-rf"_s);
    press(content, u"Install packages"_s);
    EXPECT_EQ(window.run.plainText(), u"Package names may only contain letters, digits and . + _ : = ~ -\n"_s);
    // The machine's shell is this host's: what is installed is never reached.
    window.orbStack.tools().addTool(u"orb"_s, u"case $1 in -m) cat > /dev/null;; status) echo Running;; esac"_s);
    packages->setText(u"git, curl"_s);
    press(content, u"Install packages"_s);
    EXPECT_TRUE(waitUntil([&] { return window.history.entries().size() == 1; }));
    EXPECT_EQ(window.history.entries()[0].command, u"install packages: git curl"_s);
    EXPECT_EQ(window.run.script(), u"mine"_s);
    EXPECT_EQ(packages->text(), u"git, curl"_s);
}

TEST(RunView, InstallsPackagesOnReturnInTheirField)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    // The machine's shell is this host's: what is installed is never reached.
    window.orbStack.tools().addTool(u"orb"_s, u"case $1 in -m) cat > /dev/null;; status) echo Running;; esac"_s);
    auto *packages = find<QLineEdit>(content, packagesField);
    packages->setText(u" "_s);
    QTest::keyClick(packages, Qt::Key_Return);
    EXPECT_FALSE(window.run.isRunning());
    packages->setText(u"git"_s);
    QTest::keyClick(packages, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return window.history.entries().size() == 1; }));
    EXPECT_EQ(window.history.entries()[0].command, u"install packages: git"_s);
}
