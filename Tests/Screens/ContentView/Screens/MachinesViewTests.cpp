#include "Screens/ContentView/Screens/MachinesViewTest.h"

TEST_F(MachinesViewTest, OffersTheThreeDistributionsANameAndCreate)
{
    show();
    EXPECT_TRUE(shows(view(), u"Machines are real Linux systems on this Mac. They stay until you delete them."_s));
    EXPECT_NE(find<QGroupBox>(view(), u"New sandbox"_s), nullptr);
    const QComboBox *picker = view().findChild<QComboBox *>();
    EXPECT_EQ(picker->accessibleName(), u"Distro"_s);
    EXPECT_EQ(find<PlainLabel>(view(), u"Distro"_s)->buddy(), picker);
    ASSERT_EQ(picker->count(), 3);
    EXPECT_EQ(picker->itemText(0), u"ubuntu"_s);
    EXPECT_EQ(picker->itemText(1), u"debian"_s);
    EXPECT_EQ(picker->itemText(2), u"alpine"_s);
    EXPECT_EQ(picker->currentIndex(), 0);
    EXPECT_EQ(picker->parentWidget()->width(), 180);
    EXPECT_EQ(nameField().text(), QString());
    EXPECT_FALSE(isOffered(view(), u"Create"_s));
    EXPECT_EQ(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_EQ(find<LogBox>(view(), u"Machine log"_s), nullptr);
}

TEST_F(MachinesViewTest, ShowsOneRowPerMachineInTheStoresOrder)
{
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(R"([{"name":"zeta","state":"Running","image":{"distro":"debian","version":"12"}},
                                       {"name":"alpha","state":"stopped","image":{"distro":"alpine"}},
                                       {"name":"bare","state":"running"}])");
    window.show().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 3; }));
    EXPECT_EQ(rowTexts(0), (QStringList{u"zeta"_s, u"debian 12 · Running"_s}));
    EXPECT_EQ(rowTexts(1), (QStringList{u"alpha"_s, u"alpine · stopped"_s}));
    EXPECT_EQ(rowTexts(2), (QStringList{u"bare"_s, u" · running"_s}));
    EXPECT_EQ(ByName::nameOf(list().row(1)), u"alpha"_s);
    const auto *dot = list().row(0)->findChild<StatusDot *>();
    EXPECT_EQ(dot->size(), QSize(9, 9));
    EXPECT_EQ(dot->colour(), StatusDot::Colour::green);
    EXPECT_EQ(list().row(1)->findChild<StatusDot *>()->colour(), StatusDot::Colour::grey);
    EXPECT_EQ(ByName::nameOf(list().row(1)->findChild<StatusDot *>()), u"not running"_s);
}

TEST_F(MachinesViewTest, EnablesStartAndStopByTheStateInAnyLetterCase)
{
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(R"([{"name":"up","state":"Running"},{"name":"down","state":"stopped"}])");
    window.show().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 2; }));
    EXPECT_FALSE(isOffered(view(), u"Start"_s, u"Start up"_s));
    EXPECT_TRUE(isOffered(view(), u"Stop"_s, u"Stop up"_s));
    EXPECT_TRUE(isOffered(view(), u"Start"_s, u"Start down"_s));
    EXPECT_FALSE(isOffered(view(), u"Stop"_s, u"Stop down"_s));
    EXPECT_TRUE(shows(view(), u"Stop"_s));
    EXPECT_TRUE(isOffered(view(), u"Delete"_s, u"Delete up"_s));
    EXPECT_TRUE(isOffered(view(), u"Delete"_s, u"Delete down"_s));
}

TEST_F(MachinesViewTest, ShowsOnlyTheNotRunningTextWhileOrbStackIsStopped)
{
    show();
    nameField().setText(u"scratch"_s);
    EXPECT_TRUE(isOffered(view(), u"Create"_s));
    window.orbStack.setRunning(false);
    ASSERT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_TRUE(shows(view(), notRunning));
    EXPECT_FALSE(list().isVisible());
    EXPECT_FALSE(shows(view(), noMachines));
    EXPECT_FALSE(isOffered(view(), u"Create"_s));
    EXPECT_FALSE(window.machines.machines().isEmpty());
    window.orbStack.setRunning(true);
    ASSERT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_FALSE(shows(view(), notRunning));
    EXPECT_TRUE(list().isVisible());
    EXPECT_EQ(nameField().text(), u"scratch"_s);
}

TEST_F(MachinesViewTest, SaysSoWhenThereAreNoMachines)
{
    show({});
    EXPECT_TRUE(shows(view(), noMachines));
    EXPECT_FALSE(list().isVisible());
    window.orbStack.setMachines({u"box"_s});
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_FALSE(shows(view(), noMachines));
    EXPECT_TRUE(list().isVisible());
}

TEST_F(MachinesViewTest, ShowsTheErrorInRedInPlaceOfTheEmptyText)
{
    show({});
    window.orbStack.tools().removeTool(u"orb"_s);
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    auto *error = find<NoteText>(view(), u"orb is not installed."_s);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->palette().color(QPalette::Text), Colours::red(view().palette()));
    EXPECT_FALSE(shows(view(), noMachines));
    EXPECT_FALSE(shows(view(), notRunning));
    EXPECT_FALSE(list().isVisible());
    // Once it is known that OrbStack does not run, that is the reason shown.
    ASSERT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_FALSE(shows(view(), u"orb is not installed."_s));
    EXPECT_TRUE(shows(view(), notRunning));
}

TEST_F(MachinesViewTest, KeepsTheListBelowTheErrorOfAFailedListing)
{
    show();
    window.orbStack.tools().addTool(u"orb"_s, u"echo '<b>no</b> list' >&2; exit 1"_s);
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_TRUE(shows(view(), u"<b>no</b> list"_s));
    EXPECT_TRUE(list().isVisible());
    EXPECT_EQ(list().count(), 2);
}

TEST_F(MachinesViewTest, ListsNothingWhenItIsOpened)
{
    show();
    window.content().setTab(AppTab::run);
    const qsizetype listings = calls(FakeOrbStack::listCall);
    window.content().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChildren<MachinesView *>().size() == 1; }));
    EXPECT_EQ(list().count(), 2);
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(calls(FakeOrbStack::listCall), listings + 1) << "none but this one";
}

TEST_F(MachinesViewTest, DoesNotOfferCreateForANameOfBlanks)
{
    show();
    for (const QString &name : {u" "_s, u" \t  "_s}) {
        nameField().setText(name);
        EXPECT_FALSE(isOffered(view(), u"Create"_s));
    }
    nameField().setText(u" a"_s);
    EXPECT_TRUE(isOffered(view(), u"Create"_s));
    nameField().clear();
    EXPECT_FALSE(isOffered(view(), u"Create"_s));
}
