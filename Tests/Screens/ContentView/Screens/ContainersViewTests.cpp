#include "Screens/ContentView/Screens/ContainersViewTest.h"

TEST_F(ContainersViewTest, ShowsHeaderFormAndRows)
{
    show();
    EXPECT_TRUE(shows(view(), u"Containers (docker ps -a)"_s));
    EXPECT_TRUE(isOffered(view(), u"Refresh"_s));
    EXPECT_NE(find<QGroupBox>(view(), u"Run a container"_s), nullptr);
    EXPECT_EQ(field(u"Ports (8080:80)"_s).width(), 150);
    EXPECT_EQ(field(u"Name (optional)"_s).width(), 160);
    EXPECT_GT(image().width(), 160);
    EXPECT_LT(image().x(), field(u"Ports (8080:80)"_s).x());
    EXPECT_LT(field(u"Ports (8080:80)"_s).x(), field(u"Name (optional)"_s).x());
    EXPECT_FALSE(isOffered(view(), u"Run"_s));
    ASSERT_EQ(list().count(), 2);
    EXPECT_EQ(rowTexts(0), (QStringList{u"web"_s, u"nginx · Up 2 minutes"_s, u"0.0.0.0:8080->80/tcp"_s}));
    EXPECT_EQ(rowTexts(1), (QStringList{u"db"_s, u"nginx · Up 2 minutes"_s}));
    EXPECT_EQ(ByName::nameOf(list().row(1)), u"db"_s);
    EXPECT_FALSE(shows(view(), noContainers));
}

TEST_F(ContainersViewTest, TellsARunningContainerInAnyLetterCase)
{
    QByteArray lines;
    const QStringList states{u"Running"_s, u"RUNNING"_s,    u"exited"_s, u"created"_s,
                             u"paused"_s,  u"restarting"_s, u""_s};
    for (const QString &state : states)
        lines += lineOf(u"is-"_s + state, state);
    setContainers(lines);
    show();
    ASSERT_EQ(list().count(), states.size());
    for (int index = 0; index < list().count(); ++index) {
        const bool isRunning = index < 2;
        const auto *dot = list().row(index)->findChild<StatusDot *>();
        EXPECT_EQ(dot->size(), QSize(9, 9));
        EXPECT_EQ(dot->colour(), isRunning ? StatusDot::Colour::green : StatusDot::Colour::grey);
        EXPECT_EQ(dot->accessibleName(), isRunning ? u"running"_s : u"not running"_s);
        EXPECT_EQ(list().row(index)->buttons()[0]->isEnabled(), !isRunning);
        EXPECT_EQ(list().row(index)->buttons()[1]->isEnabled(), isRunning);
        EXPECT_TRUE(list().row(index)->buttons()[2]->isEnabled());
        EXPECT_TRUE(list().row(index)->buttons()[3]->isEnabled());
    }
}

TEST_F(ContainersViewTest, SaysSoWhenThereAreNoContainers)
{
    setContainers({});
    show();
    EXPECT_TRUE(shows(view(), noContainers));
    EXPECT_TRUE(list().isVisible());
    setContainers(lineOf(u"web"_s, u"running"_s));
    press(view(), u"Refresh"_s);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 1; }));
    EXPECT_FALSE(shows(view(), noContainers));
}

TEST_F(ContainersViewTest, ShowsAnErrorInRedInPlaceOfTheEmptyTextAndKeepsTheList)
{
    show();
    tools().addTool(u"docker"_s, u"echo 'Cannot connect to <b>Docker</b>' >&2; exit 1"_s);
    press(view(), u"Refresh"_s);
    ASSERT_TRUE(waitUntil([this] { return shows(view(), u"Cannot connect to <b>Docker</b>"_s); }));
    EXPECT_EQ(find<NoteText>(view(), u"Cannot connect to <b>Docker</b>"_s)->palette().color(QPalette::Text),
              Colours::red(view().palette()));
    EXPECT_EQ(list().count(), 2);
    EXPECT_TRUE(list().isVisible());
    EXPECT_FALSE(shows(view(), noContainers));
}

TEST_F(ContainersViewTest, ShowsTheErrorInPlaceOfTheEmptyText)
{
    setContainers({});
    show();
    EXPECT_TRUE(shows(view(), noContainers));
    tools().addTool(u"docker"_s, u"echo 'no engine' >&2; exit 1"_s);
    press(view(), u"Refresh"_s);
    ASSERT_TRUE(waitUntil([this] { return shows(view(), u"no engine"_s); }));
    EXPECT_EQ(find<NoteText>(view(), u"no engine"_s)->palette().color(QPalette::Text), Colours::red(view().palette()));
    EXPECT_FALSE(shows(view(), noContainers));
}

TEST_F(ContainersViewTest, ShowsTheErrorInOrangeAndNoEmptyTextWithoutDocker)
{
    show();
    image().setText(u"nginx"_s);
    EXPECT_TRUE(isOffered(view(), u"Run"_s));
    tools().removeTool(u"docker"_s);
    ASSERT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_FALSE(isOffered(view(), u"Run"_s));
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    ASSERT_TRUE(shows(view(), notFound));
    EXPECT_EQ(find<NoteText>(view(), notFound)->palette().color(QPalette::Text), Colours::orange(view().palette()));
    EXPECT_FALSE(shows(view(), noContainers));
    EXPECT_EQ(list().count(), 0);
    EXPECT_TRUE(isOffered(view(), u"Refresh"_s));
}

TEST_F(ContainersViewTest, OffersRunOnlyForAnImageWithDockerAndOrbStackRunning)
{
    show();
    EXPECT_FALSE(isOffered(view(), u"Run"_s));
    image().setText(u" "_s);
    EXPECT_TRUE(isOffered(view(), u"Run"_s));
    image().clear();
    EXPECT_FALSE(isOffered(view(), u"Run"_s));
    image().setText(u"nginx"_s);
    EXPECT_TRUE(isOffered(view(), u"Run"_s));
    window.orbStack.setRunning(false);
    ASSERT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_FALSE(isOffered(view(), u"Run"_s));
    EXPECT_TRUE(isOffered(view(), u"Stop"_s, u"Stop web"_s));
    EXPECT_TRUE(isOffered(view(), u"Logs"_s, u"Logs db"_s));
    EXPECT_TRUE(isOffered(view(), u"Remove"_s, u"Remove db"_s));
    EXPECT_TRUE(list().isVisible());
    write(u"fail"_s, "Cannot connect to the Docker daemon.");
    press(view(), u"Remove"_s, u"Remove db"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_TRUE(shows(view(), u"docker rm failed: Cannot connect to the Docker daemon."_s));
}

TEST_F(ContainersViewTest, StartsItsFormEmptyEachTimeTheTabIsOpened)
{
    show();
    image().setText(u"nginx"_s);
    window.content().setTab(AppTab::machines);
    const qsizetype listings = calls(u"<ps><-a><--format><{{json .}}>"_s);
    window.content().setTab(AppTab::containers);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChildren<ContainersView *>().size() == 1; }));
    EXPECT_EQ(image().text(), QString());
    EXPECT_EQ(list().count(), 2);
    EXPECT_TRUE(waitFor(window.containers.refresh()));
    EXPECT_EQ(calls(u"<ps><-a><--format><{{json .}}>"_s), listings + 1) << "opening lists nothing";
}
