#include "ContentView/Colours.h"
#include "ContentView/ContainerLogSheet.h"
#include "ContentView/ContainersView.h"
#include "ContentView/LogBox.h"
#include "ContentView/NoteText.h"
#include "ContentView/PlainLabel.h"
#include "ContentView/RowList.h"
#include "ContentView/StatusDot.h"
#include "ContentView/Typography.h"
#include "Screens/PaintWatch.h"
#include "Screens/TestWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QWindow>

#include <tuple>

using namespace Qt::StringLiterals;
using ByName::find;
using ByName::isOffered;
using ByName::press;
using ByName::shows;

namespace
{

const auto noContainers = u"No containers."_s;
const auto notFound = u"The docker command was not found. Install OrbStack (it provides docker) and start it."_s;

QByteArray lineOf(const QString &name, const QString &state, const QString &ports = {})
{
    return u"{\"ID\":\"id-%1\",\"Names\":\"%1\",\"Image\":\"nginx\",\"State\":\"%2\",\"Status\":\"Up 2 minutes\",\"Ports\":\"%3\"}\n"_s
        .arg(name, state, ports)
        .toUtf8();
}

class ContainersViewTest : public testing::Test
{
protected:
    ContainersViewTest()
    {
        // `ps` prints a file, `logs` another; every other verb waits while there is a file "hold".
        tools().addTool(u"docker"_s,
                        u"cd '%1' || exit 1\ncase \"$1\" in\nps) cat containers ;;\nlogs) cat log ;;\n"
                        "*) while [ -e hold ]; do sleep 0.02; done\n"
                        "   if [ -e fail ]; then cat fail >&2; exit 1; fi ;;\nesac"_s.arg(tools().path(u"."_s)));
        setContainers(lineOf(u"web"_s, u"Running"_s, u"0.0.0.0:8080->80/tcp"_s) + lineOf(u"db"_s, u"exited"_s));
        write(u"log"_s, "a line\n");
    }

    ~ContainersViewTest() override { release(); }

    ContainersView &show()
    {
        window.showRunning({u"box"_s});
        window.content().setTab(AppTab::containers);
        EXPECT_TRUE(waitFor(window.containers.refresh()));
        return view();
    }

    ContainersView &view() { return *window.content().findChild<ContainersView *>(); }
    RowList &list() { return *view().findChild<RowList *>(); }
    QLineEdit &field(const QString &placeholder) { return *find<QLineEdit>(view(), placeholder); }
    QLineEdit &image() { return field(u"Image (nginx:latest)"_s); }
    TestTools &tools() { return window.orbStack.tools(); }
    ContainerLogSheet *sheet() { return window.content().findChild<ContainerLogSheet *>(); }
    qsizetype calls(const QString &arguments) { return tools().calls(u"docker"_s).count(arguments); }

    QStringList rowTexts(int index)
    {
        QStringList texts;
        for (const PlainLabel *label : list().row(index)->findChildren<PlainLabel *>())
            texts << label->text();
        return texts;
    }

    void write(const QString &name, const QByteArray &content)
    {
        QFile file(tools().path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }

    void setContainers(const QByteArray &lines) { write(u"containers"_s, lines); }
    void hold() { write(u"hold"_s, {}); }
    void release() { QFile::remove(tools().path(u"hold"_s)); }

    bool untilIdle()
    {
        return waitUntil([this] { return !window.containers.busy(); });
    }

    TestWindow window;
};

} // namespace

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

TEST_F(ContainersViewTest, ShowsTheLogInASheet)
{
    write(u"log"_s, "<b>one</b>\ntwo\n");
    show();
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->size(), QSize(640, 420));
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(shows(*sheet(), u"Logs: web"_s));
    auto *log = find<LogBox>(*sheet(), u"Container log"_s);
    ASSERT_NE(log, nullptr);
    EXPECT_EQ(log->shownText(), u"<b>one</b>\ntwo"_s);
    EXPECT_EQ(log->font().pixelSize(), 11);
    log->selectAll();
    EXPECT_EQ(log->textCursor().selectedText(), u"<b>one</b>\u2029two"_s);
    press(*sheet(), u"Close"_s);
    EXPECT_FALSE(window.containers.showLogs());
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    EXPECT_EQ(calls(u"<logs><--tail><300><web>"_s), 1);
}

TEST_F(ContainersViewTest, ClosesTheSheetByAnyMeans)
{
    show();
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_FALSE(window.containers.showLogs());
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    sheet()->close();
    EXPECT_FALSE(window.containers.showLogs());
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    window.containers.setShowLogs(false);
    EXPECT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
}

TEST_F(ContainersViewTest, ShowsALogThatArrivedWhileAnotherTabWasOpen)
{
    show();
    press(view(), u"Logs"_s, u"Logs db"_s);
    window.content().setTab(AppTab::history);
    ASSERT_TRUE(waitUntil([this] { return window.containers.showLogs(); }));
    EXPECT_EQ(sheet(), nullptr);
    window.content().setTab(AppTab::containers);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_TRUE(shows(*sheet(), u"Logs: db"_s));
    // It is a sheet of this window, which takes nothing else meanwhile.
    EXPECT_EQ(sheet()->windowHandle()->transientParent(), window.content().windowHandle());
    EXPECT_TRUE(sheet()->isModal());
}

TEST_F(ContainersViewTest, ClosesTheSheetForGoodWhenItsScreenGoes)
{
    show();
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    window.content().setTab(AppTab::machines);
    EXPECT_FALSE(window.containers.showLogs());
    window.content().setTab(AppTab::containers);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChildren<ContainersView *>().size() == 1; }));
    EXPECT_EQ(sheet(), nullptr);
    press(view(), u"Logs"_s, u"Logs db"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    window.close();
    EXPECT_FALSE(window.containers.showLogs());
}

TEST_F(ContainersViewTest, KeepsTheSheetWhenItsContainerDisappears)
{
    show();
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    const ContainerLogSheet *before = sheet();
    setContainers(lineOf(u"db"_s, u"exited"_s));
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    ASSERT_EQ(list().count(), 1);
    ASSERT_EQ(sheet(), before);
    EXPECT_TRUE(sheet()->isVisible());
    EXPECT_EQ(find<LogBox>(*sheet(), u"Container log"_s)->shownText(), u"a line"_s);
    press(*sheet(), u"Close"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() == nullptr; }));
    EXPECT_EQ(ByName::descriptionOf(window.content().window()->focusWidget()), u"Logs db"_s);
}

TEST_F(ContainersViewTest, ShowsTheLaterOfTwoLogsInTheSameSheet)
{
    // The first reading ends after the second.
    tools().addTool(u"docker"_s, u"cd '%1' || exit 1\ncase \"$1\" in\nps) cat containers ;;\n"
                                 "logs) [ \"$4\" = web ] && while [ -e hold ]; do sleep 0.02; done\n"
                                 "echo \"log of $4\" ;;\nesac"_s.arg(tools().path(u"."_s)));
    show();
    hold();
    press(view(), u"Logs"_s, u"Logs web"_s);
    press(view(), u"Logs"_s, u"Logs db"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    const ContainerLogSheet *only = sheet();
    EXPECT_TRUE(shows(*sheet(), u"Logs: db"_s));
    release();
    ASSERT_TRUE(waitUntil([this] { return shows(*sheet(), u"Logs: web"_s); }));
    const auto *log = find<LogBox>(*sheet(), u"Container log"_s);
    ASSERT_TRUE(waitUntil([log] { return log->shownText() == u"log of web"_s; }));
    EXPECT_EQ(window.content().findChildren<ContainerLogSheet *>(), QList<ContainerLogSheet *>{sheet()});
    EXPECT_EQ(sheet(), only);
}

TEST_F(ContainersViewTest, ShowsALogOfThreeHundredLinesOfAHundredKilobytes)
{
    write(u"log"_s, (QByteArray(100 * 1024, 'x') + '\n').repeated(300));
    show();
    QElapsedTimer timer;
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this, &timer] {
        if (window.containers.showLogs())
            return true;
        timer.start();
        return false;
    }));
    ASSERT_NE(sheet(), nullptr);
    sheet()->grab();
    RecordProperty("openingMilliseconds", static_cast<int>(timer.elapsed()));
    EXPECT_LT(timer.elapsed(), 20000); // far above what it takes, so that a sanitizer passes
    EXPECT_EQ(sheet()->size(), QSize(640, 420));
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

TEST_F(ContainersViewTest, ShowsHostileTextsAsTheyAre)
{
    const QString name = u"<b>web</b>"_s;
    setContainers(lineOf(name, u"running"_s, QString(1000000, u'8')) + lineOf(u"\u202egnp"_s, u"exited"_s));
    show();
    const QSize size = window.content().size();
    ASSERT_EQ(list().count(), 2);
    EXPECT_EQ(rowTexts(0)[0], name);
    EXPECT_LT(rowTexts(0)[2].size(), 2000);
    EXPECT_EQ(rowTexts(1)[0], u"⟨U+202E⟩gnp"_s);
    write(u"fail"_s, QByteArray(2000000, 'e'));
    press(view(), u"Stop"_s, u"Stop "_s + name);
    ASSERT_TRUE(untilIdle());
    QTest::qWait(20);
    EXPECT_EQ(window.content().size(), size);
    EXPECT_LT(view().findChild<NoteText *>()->height(), 200);
    press(view(), u"Logs"_s, u"Logs "_s + name);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    EXPECT_TRUE(shows(*sheet(), u"Logs: "_s + name));
}

TEST_F(ContainersViewTest, ShowsMarkupInEveryTextAsItIs)
{
    const QByteArray html = "<img src=x><b>b</b>&amp;";
    setContainers(QByteArray("{\"ID\":\"H\",\"Names\":\"H\",\"Image\":\"H\",\"State\":\"H\",\"Status\":\"H\","
                             "\"Ports\":\"H\"}\n")
                      .replace("H", html));
    show();
    ASSERT_EQ(list().count(), 1);
    const QString text = QString::fromUtf8(html);
    EXPECT_EQ(rowTexts(0), (QStringList{text, text + u" · "_s + text, text}));
    for (const PlainLabel *label : list().row(0)->findChildren<PlainLabel *>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
    write(u"fail"_s, html);
    press(view(), u"Start"_s, u"Start "_s + text);
    ASSERT_TRUE(untilIdle());
    EXPECT_TRUE(shows(view(), u"docker start failed: "_s + text));
}

TEST_F(ContainersViewTest, StaysAsWideAsItIsForALineOfTenMegabytes)
{
    const QSize size = show().size();
    setContainers("{\"ID\":\"x\",\"Labels\":\"" + QByteArray(5000000, 'l') + "\",\"Names\":\"" +
                  QByteArray(5000000, 'n') + "\"}\n" + lineOf(u"web"_s, u"running"_s));
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    ASSERT_EQ(list().count(), 2);
    QElapsedTimer timer;
    timer.start();
    view().grab();
    EXPECT_LT(timer.elapsed(), 2000); // far above what it takes, so that a sanitizer passes
    EXPECT_EQ(view().size(), size);
    EXPECT_LE(list().row(0)->buttons().last()->geometry().right(), list().viewport()->width());
}

TEST_F(ContainersViewTest, SetsItsTextsInTheTypeOfTheirRank)
{
    show();
    const QList<PlainLabel *> lines = list().row(0)->findChildren<PlainLabel *>();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0]->font(), Typography::headline());
    EXPECT_EQ(lines[1]->font(), Typography::caption());
    EXPECT_EQ(lines[2]->font(), Typography::smallestCaption());
    for (const int secondary : {1, 2})
        EXPECT_EQ(lines[secondary]->palette().color(QPalette::WindowText), Colours::secondary(view().palette()));
    EXPECT_EQ(find<PlainLabel>(view(), u"Containers (docker ps -a)"_s)->font(), Typography::headline());
    image().setText(u"-"_s);
    press(view(), u"Run"_s);
    auto *message = find<NoteText>(view(), u"Enter a valid image name, for example nginx:latest."_s);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->font(), Typography::callout());
}

TEST_F(ContainersViewTest, PaintsNothingForARefreshThatChangesNothing)
{
    QApplication::setCursorFlashTime(0);
    QByteArray lines;
    for (int number = 0; number < 1000; ++number)
        lines += lineOf(u"c%1"_s.arg(number), number % 2 == 0 ? u"running"_s : u"exited"_s);
    setContainers(lines);
    show();
    list().verticalScrollBar()->setValue(4000);
    QTest::qWait(50);
    PaintWatch watch(window.content());
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    QTest::qWait(50);
    EXPECT_EQ(watch.count(), 0);
    EXPECT_EQ(list().verticalScrollBar()->value(), 4000);
}

TEST_F(ContainersViewTest, RepaintsOnlyTheRowOfTheContainerThatChanged)
{
    QApplication::setCursorFlashTime(0);
    show();
    QTest::qWait(50);
    setContainers(lineOf(u"web"_s, u"exited"_s, u"0.0.0.0:8080->80/tcp"_s) + lineOf(u"db"_s, u"exited"_s));
    PaintWatch watch(window.content());
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    QTest::qWait(50);
    EXPECT_GT(watch.count(), 0);
    EXPECT_TRUE(watch.isWithin(*list().row(0)));
}

TEST_F(ContainersViewTest, KeepsFocusScrollPositionAndAHalfPressedButtonThroughARefresh)
{
    QByteArray lines;
    for (int number = 0; number < 200; ++number)
        lines += lineOf(u"c%1"_s.arg(number), u"running"_s);
    setContainers(lines);
    show();
    list().verticalScrollBar()->setValue(list().row(100)->y());
    QPushButton *held = list().row(101)->buttons()[1];
    QTest::mousePress(held, Qt::LeftButton);
    held->setFocus();
    const int place = held->mapTo(&window.content(), QPoint()).y();
    setContainers(lineOf(u"new"_s, u"created"_s) + lines);
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    EXPECT_EQ(list().count(), 201);
    EXPECT_EQ(held->mapTo(&window.content(), QPoint()).y(), place);
    EXPECT_TRUE(held->isDown());
    EXPECT_TRUE(held->hasFocus());
    QTest::mouseRelease(held, Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><c101>"_s), 1);
}

TEST_F(ContainersViewTest, StaysUsableWithFiveThousandContainers)
{
    QByteArray lines;
    for (int number = 0; number < 5000; ++number)
        lines += lineOf(u"c%1"_s.arg(number), u"running"_s, number % 3 == 0 ? u"80/tcp"_s : QString());
    setContainers(lines);
    show();
    EXPECT_EQ(list().count(), 5000);
    list().row(4999)->buttons()[3]->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(list().verticalScrollBar()->value(), list().verticalScrollBar()->maximum());
    press(view(), u"Remove"_s, u"Remove c4999"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<rm><-f><c4999>"_s), 1);
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
    EXPECT_EQ(calls(u"<ps><-a><--format><{{json .}}>"_s), listings); // opening lists nothing
}
