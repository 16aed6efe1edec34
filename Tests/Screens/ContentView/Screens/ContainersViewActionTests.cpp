#include "Screens/ContentView/Screens/ContainersViewTest.h"

TEST_F(ContainersViewTest, RunsTheImageWithNameAndPortsAndKeepsTheForm)
{
    show();
    image().setText(u" nginx:latest "_s);
    field(u"Name (optional)"_s).setText(u"shop"_s);
    field(u"Ports (8080:80)"_s).setText(u"8080:80, 53/udp"_s);
    hold();
    press(view(), u"Run"_s);
    EXPECT_TRUE(shows(view(), u"Running nginx:latest… (pulling the image can take a while)"_s));
    EXPECT_NE(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_FALSE(isOffered(view(), u"Run"_s));
    for (const int button : {0, 1, 3}) {
        EXPECT_FALSE(list().row(0)->buttons()[button]->isEnabled());
        EXPECT_FALSE(list().row(1)->buttons()[button]->isEnabled());
    }
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    press(*sheet(), u"Close"_s);
    setContainers(lineOf(u"web"_s, u"running"_s));
    press(view(), u"Refresh"_s);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 1; }));
    EXPECT_TRUE(window.containers.busy());
    release();
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<run><-d><--name><shop><-p><8080:80><-p><53/udp><nginx:latest>"_s), 1);
    EXPECT_TRUE(shows(view(), u"Started shop."_s));
    EXPECT_EQ(find<NoteText>(view(), u"Started shop."_s)->palette().color(QPalette::Text),
              Colours::secondary(view().palette()));
    EXPECT_EQ(image().text(), u" nginx:latest "_s);
    EXPECT_TRUE(isOffered(view(), u"Run"_s));
    EXPECT_EQ(find<QProgressBar>(view(), u"In progress"_s), nullptr);
}

TEST_F(ContainersViewTest, ExplainsWhatIsRefused)
{
    show();
    image().setText(u" "_s);
    press(view(), u"Run"_s);
    EXPECT_TRUE(shows(view(), u"Enter a valid image name, for example nginx:latest."_s));
    image().setText(u"nginx"_s);
    field(u"Ports (8080:80)"_s).setText(u"http"_s);
    press(view(), u"Run"_s);
    EXPECT_TRUE(shows(view(), u"Ports look like 8080:80, separated by commas."_s));
}

TEST_F(ContainersViewTest, ActsOnTheContainerOfTheRow)
{
    show();
    press(view(), u"Stop"_s, u"Stop web"_s);
    ASSERT_TRUE(untilIdle());
    press(view(), u"Start"_s, u"Start db"_s);
    ASSERT_TRUE(untilIdle());
    press(view(), u"Remove"_s, u"Remove web"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><web>"_s), 1);
    EXPECT_EQ(calls(u"<start><db>"_s), 1);
    EXPECT_EQ(calls(u"<rm><-f><web>"_s), 1);
}

TEST_F(ContainersViewTest, AnswersTwoQuickPressesOnce)
{
    show();
    hold();
    QPushButton *stop = list().row(0)->buttons()[1];
    QTest::mouseClick(stop, Qt::LeftButton);
    QTest::mouseClick(stop, Qt::LeftButton);
    QTest::mouseClick(list().row(0)->buttons()[3], Qt::LeftButton);
    release();
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><web>"_s), 1);
    EXPECT_EQ(calls(u"<rm><-f><web>"_s), 0);
    hold();
    image().setText(u"nginx"_s);
    QPushButton *run = find<QPushButton>(view(), u"Run"_s);
    QTest::mouseClick(run, Qt::LeftButton);
    QTest::mouseClick(run, Qt::LeftButton);
    release();
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<run><-d><nginx>"_s), 1);
    for (const auto &[row, button, call] : {std::tuple{1, 0, u"<start><db>"_s}, {0, 3, u"<rm><-f><web>"_s}}) {
        hold();
        QTest::mouseClick(list().row(row)->buttons()[button], Qt::LeftButton);
        QTest::mouseClick(list().row(row)->buttons()[button], Qt::LeftButton);
        release();
        ASSERT_TRUE(untilIdle());
        EXPECT_EQ(calls(call), 1);
    }
}

TEST_F(ContainersViewTest, ActsOnThePressedOneOfTwoContainersOfTheSameId)
{
    setContainers("{\"ID\":\"twin\",\"Names\":\"first\",\"State\":\"running\"}\n"
                  "{\"ID\":\"twin\",\"Names\":\"second\",\"State\":\"running\"}\n");
    show();
    ASSERT_EQ(list().count(), 2);
    press(view(), u"Stop"_s, u"Stop second"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><second>"_s), 1);
    EXPECT_EQ(calls(u"<stop><first>"_s), 0);
    press(view(), u"Logs"_s, u"Logs second"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    EXPECT_TRUE(shows(*sheet(), u"Logs: second"_s));
}

TEST_F(ContainersViewTest, GoesOnWithAnOperationWhileAnotherTabIsShown)
{
    show();
    hold();
    press(view(), u"Stop"_s, u"Stop web"_s);
    window.content().setTab(AppTab::run);
    QTest::qWait(0);
    window.content().setTab(AppTab::containers);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChildren<ContainersView *>().size() == 1; }));
    EXPECT_NE(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_FALSE(isOffered(view(), u"Remove"_s, u"Remove web"_s));
    window.content().setTab(AppTab::history);
    setContainers(lineOf(u"web"_s, u"exited"_s));
    write(u"fail"_s, "too late");
    release();
    ASSERT_TRUE(untilIdle());
    ASSERT_TRUE(waitUntil([this] { return window.containers.containers().size() == 1; }));
    window.content().setTab(AppTab::containers);
    EXPECT_TRUE(shows(view(), u"docker stop failed: too late"_s));
    EXPECT_EQ(list().count(), 1);
    EXPECT_TRUE(isOffered(view(), u"Start"_s, u"Start web"_s));
}

TEST_F(ContainersViewTest, TellsAFailureOfAnAction)
{
    show();
    write(u"fail"_s, "Error response from daemon: No such container: web");
    press(view(), u"Stop"_s, u"Stop web"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_TRUE(shows(view(), u"docker stop failed: Error response from daemon: No such container: web"_s));
}

TEST_F(ContainersViewTest, StaysAsItIsWhenTheEngineDiesDuringAnAction)
{
    show();
    hold();
    press(view(), u"Stop"_s, u"Stop web"_s);
    // The tool is under way, and not merely about to be read, when another takes its place.
    ASSERT_TRUE(waitUntil([this] { return tools().calls(u"docker"_s).contains(u"<stop><web>"_s); }));
    tools().addTool(u"docker"_s, u"echo 'Cannot connect to the Docker daemon.' >&2; exit 1"_s);
    write(u"fail"_s, "error during connect: EOF");
    release();
    ASSERT_TRUE(untilIdle());
    EXPECT_TRUE(shows(view(), u"docker stop failed: error during connect: EOF"_s));
    ASSERT_TRUE(waitUntil([this] { return shows(view(), u"Cannot connect to the Docker daemon."_s); }));
    EXPECT_EQ(list().count(), 2);
}

TEST_F(ContainersViewTest, IsUsableByKeyboardAlone)
{
    show();
    const auto key = [](Qt::Key which) { QTest::keyClick(QApplication::focusWidget(), which); };
    const auto focused = [] { return ByName::descriptionOf(QApplication::focusWidget()); };
    find<QPushButton>(view(), u"Refresh"_s)->setFocus();
    const qsizetype listings = calls(u"<ps><-a><--format><{{json .}}>"_s);
    key(Qt::Key_Space);
    ASSERT_TRUE(waitUntil([&] { return calls(u"<ps><-a><--format><{{json .}}>"_s) == listings + 1; }));
    key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &image());
    QTest::keyClicks(QApplication::focusWidget(), u"nginx"_s);
    key(Qt::Key_Tab);
    QTest::keyClicks(QApplication::focusWidget(), u"8080:80"_s);
    key(Qt::Key_Tab);
    QTest::keyClicks(QApplication::focusWidget(), u"shop"_s);
    key(Qt::Key_Tab);
    EXPECT_EQ(ByName::nameOf(QApplication::focusWidget()), u"Run"_s);
    key(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<run><-d><--name><shop><-p><8080:80><nginx>"_s), 1);
    EXPECT_EQ(QApplication::focusWidget(), &image()); // the button was disabled meanwhile
    for (int tabs = 0; tabs < 6 && focused() != u"Stop web"_s; ++tabs)
        key(Qt::Key_Tab);
    ASSERT_EQ(focused(), u"Stop web"_s);
    key(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(focused(), u"Stop web"_s);
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), u"Logs web"_s);
    key(Qt::Key_Down);
    EXPECT_EQ(focused(), u"Logs db"_s);
    key(Qt::Key_Space);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr && sheet()->isActiveWindow(); }));
    EXPECT_EQ(ByName::nameOf(QApplication::focusWidget()), u"Close"_s);
    key(Qt::Key_Space);
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    EXPECT_EQ(ByName::descriptionOf(window.content().window()->focusWidget()), u"Logs db"_s);
    window.content().activateWindow();
    ASSERT_TRUE(waitUntil([] { return QApplication::focusWidget() != nullptr; }));
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), u"Remove db"_s);
    key(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<rm><-f><db>"_s), 1);
}

TEST_F(ContainersViewTest, RunsTheImageOnReturnInAnyFieldOfTheForm)
{
    show();
    qsizetype runs = 0;
    for (const QString &placeholder : {u"Image (nginx:latest)"_s, u"Ports (8080:80)"_s, u"Name (optional)"_s}) {
        image().clear();
        QTest::keyClick(&field(placeholder), Qt::Key_Return);
        EXPECT_FALSE(window.containers.busy()) << placeholder.toStdString();
        image().setText(u"nginx"_s);
        QTest::keyClick(&field(placeholder), Qt::Key_Return);
        EXPECT_TRUE(window.containers.busy()) << placeholder.toStdString();
        ASSERT_TRUE(untilIdle());
        EXPECT_EQ(calls(u"<run><-d><nginx>"_s), ++runs);
    }
}

TEST_F(ContainersViewTest, GivesTheKeyboardToTheImageWhenTheLastContainerGoes)
{
    show();
    list().row(1)->buttons()[3]->setFocus();
    setContainers({});
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    EXPECT_EQ(window.content().focusWidget(), &image());
}
