#include "ContentView/Colours.h"
#include "ContentView/LogBox.h"
#include "ContentView/MachinesView.h"
#include "ContentView/NoteText.h"
#include "ContentView/PlainLabel.h"
#include "ContentView/RowList.h"
#include "ContentView/StatusDot.h"
#include "ContentView/Typography.h"
#include "Screens/PaintWatch.h"
#include "Screens/TestWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using ByName::find;
using ByName::isOffered;
using ByName::press;
using ByName::shows;

namespace
{

const auto notRunning = u"OrbStack is not running, so machines cannot be listed."_s;
const auto noMachines = u"No machines yet. Create one above."_s;

class MachinesViewTest : public testing::Test
{
protected:
    /// Shows the tab over a running OrbStack with these machines.
    MachinesView &show(const QStringList &names = {u"box"_s, u"web"_s})
    {
        window.showRunning(names).setTab(AppTab::machines);
        return view();
    }

    MachinesView &view() { return *window.content().findChild<MachinesView *>(); }
    RowList &list() { return *view().findChild<RowList *>(); }
    QLineEdit &nameField() { return *find<QLineEdit>(view(), u"Name (e.g. scratch)"_s); }

    QStringList rowTexts(int index)
    {
        QStringList texts;
        for (const PlainLabel *label : list().row(index)->findChildren<PlainLabel *>())
            texts << label->text();
        return texts;
    }

    bool hasStore(const QStringList &names)
    {
        QStringList listed;
        for (const Machine &machine : window.machines.machines())
            listed << machine.name;
        return listed == names;
    }

    /// An `orb` whose verbs other than status and list wait for release().
    void holdOperations(const QString &output = {})
    {
        window.orbStack.tools().addTool(
            u"orb"_s, u"cd '%1' || exit 1\ncase \"$1\" in\nstatus) cat state ;;\nlist) cat machines ;;\n"
                      "*) printf '%2'; while [ ! -e go ]; do sleep 0.02; done; [ ! -e fail ] ;;\nesac"_s.arg(
                          window.orbStack.tools().path(u"."_s), output));
    }

    void release() { touch(u"go"_s); }

    void touch(const QString &name)
    {
        QFile file(window.orbStack.tools().path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }

    bool untilIdle()
    {
        return waitUntil([this] { return !window.machines.busy(); });
    }

    qsizetype calls(const QString &arguments) { return window.orbStack.calls(arguments); }

    QMessageBox *alert() { return window.content().findChild<QMessageBox *>(); }

    TestWindow window;
};

} // namespace

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

TEST_F(MachinesViewTest, CreatesTheChosenDistributionUnderTheTrimmedName)
{
    show();
    view().findChild<QComboBox *>()->setCurrentIndex(2);
    nameField().setText(u" \tscratch  "_s);
    press(view(), u"Create"_s);
    EXPECT_TRUE(window.machines.busy());
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<create><alpine><scratch>"_s), 1);
    EXPECT_EQ(nameField().text(), u" \tscratch  "_s);
    EXPECT_TRUE(window.machines.log().contains(u"Machine scratch is ready."_s));
}

TEST_F(MachinesViewTest, ExplainsARejectedNameInTheLogAndLetsItBeCorrected)
{
    show();
    nameField().setText(u"Scratch"_s);
    press(view(), u"Create"_s);
    EXPECT_FALSE(window.machines.busy());
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    ASSERT_TRUE(waitUntil([log] { return !log->shownText().isEmpty(); }));
    EXPECT_EQ(log->shownText(), u"Use lowercase letters, digits and dashes for the name.\n"_s);
    EXPECT_EQ(log->height(), 80);
    EXPECT_EQ(nameField().text(), u"Scratch"_s);
    nameField().setText(u"box"_s);
    press(view(), u"Create"_s);
    ASSERT_TRUE(waitUntil([log] { return log->shownText() == u"A machine named box already exists.\n"_s; }));
}

TEST_F(MachinesViewTest, ShowsTheLogOfACreationGrowingAndDisablesAllElse)
{
    show();
    holdOperations(u"fetching\\n"_s);
    nameField().setText(u"scratch"_s);
    press(view(), u"Create"_s);
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    ASSERT_TRUE(waitUntil([log] { return log->shownText() == u"$ orb create ubuntu scratch\nfetching\n"_s; }));
    EXPECT_NE(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_FALSE(isOffered(view(), u"Create"_s));
    for (const RowWidget *row : {list().row(0), list().row(1)}) {
        for (const QPushButton *button : row->buttons())
            EXPECT_FALSE(button->isEnabled());
    }
    release();
    ASSERT_TRUE(untilIdle());
    ASSERT_TRUE(waitUntil([log] { return log->shownText().endsWith(u"\nMachine scratch is ready.\n"_s); }));
    EXPECT_EQ(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_TRUE(isOffered(view(), u"Create"_s));
    EXPECT_TRUE(isOffered(view(), u"Delete"_s, u"Delete box"_s));
}

TEST_F(MachinesViewTest, StartsAndStopsTheMachineOfTheRow)
{
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(R"([{"name":"up","state":"running"},{"name":"down","state":"stopped"}])");
    window.show().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 2; }));
    press(view(), u"Start"_s, u"Start down"_s);
    ASSERT_TRUE(untilIdle());
    press(view(), u"Stop"_s, u"Stop up"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<start><down>"_s), 1);
    EXPECT_EQ(calls(u"<stop><up>"_s), 1);
}

TEST_F(MachinesViewTest, AnswersTwoQuickPressesOnce)
{
    show();
    holdOperations();
    QPushButton *stop = find<QPushButton>(view(), u"Stop"_s, u"Stop box"_s);
    QTest::mouseClick(stop, Qt::LeftButton);
    QTest::mouseClick(stop, Qt::LeftButton);
    release();
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><box>"_s), 1);
    nameField().setText(u"scratch"_s);
    QPushButton *create = find<QPushButton>(view(), u"Create"_s);
    QTest::mouseClick(create, Qt::LeftButton);
    QTest::mouseClick(create, Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<create><ubuntu><scratch>"_s), 1);
    QPushButton *remove = find<QPushButton>(view(), u"Delete"_s, u"Delete box"_s);
    QTest::mouseClick(remove, Qt::LeftButton);
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_EQ(window.content().findChildren<QMessageBox *>().size(), 1);
    auto *accept = find<QPushButton>(*alert(), u"Delete"_s);
    QTest::mouseClick(accept, Qt::LeftButton);
    QTest::mouseClick(accept, Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<delete><-f><box>"_s), 1);
    window.orbStack.setMachineList(R"([{"name":"box","state":"stopped"}])");
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    QPushButton *start = find<QPushButton>(view(), u"Start"_s, u"Start box"_s);
    QTest::mouseClick(start, Qt::LeftButton);
    QTest::mouseClick(start, Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<start><box>"_s), 1);
}

TEST_F(MachinesViewTest, AsksBeforeItDeletes)
{
    show();
    press(view(), u"Delete"_s, u"Delete box"_s);
    ASSERT_NE(alert(), nullptr);
    EXPECT_TRUE(alert()->isVisible());
    EXPECT_EQ(alert()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(alert()->text(), u"Delete box?"_s);
    EXPECT_EQ(alert()->informativeText(), u"The machine and everything inside it will be removed permanently."_s);
    ASSERT_EQ(alert()->buttons().size(), 2);
    const auto *accept = find<QPushButton>(*alert(), u"Delete"_s);
    ASSERT_NE(accept, nullptr);
    EXPECT_EQ(alert()->buttonRole(const_cast<QPushButton *>(accept)), QMessageBox::DestructiveRole);
    EXPECT_FALSE(window.machines.busy());
    press(*alert(), u"Delete"_s);
    EXPECT_TRUE(window.machines.busy());
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<delete><-f><box>"_s), 1);
    EXPECT_EQ(window.machines.log(), u"Deleted box.\n"_s);
    ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
}

TEST_F(MachinesViewTest, LeavesTheMachineAloneWhenTheQuestionIsCancelled)
{
    show();
    const QList<Machine> machines = window.machines.machines();
    for (const bool byKey : {false, true}) {
        press(view(), u"Delete"_s, u"Delete box"_s);
        ASSERT_NE(alert(), nullptr);
        if (byKey)
            QTest::keyClick(alert(), Qt::Key_Escape);
        else
            press(*alert(), u"Cancel"_s);
        ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
        EXPECT_FALSE(window.machines.busy());
        EXPECT_EQ(window.machines.machines(), machines);
        EXPECT_EQ(calls(u"<delete><-f><box>"_s), 0);
        const auto *button = find<QPushButton>(view(), u"Delete"_s, u"Delete box"_s);
        EXPECT_EQ(window.content().window()->focusWidget(), button);
    }
}

TEST_F(MachinesViewTest, KeepsTheQuestionOpenAndBoundToItsMachineThroughRefreshes)
{
    show({u"box"_s, u"web"_s, u"db"_s});
    press(view(), u"Delete"_s, u"Delete web"_s);
    const QPointer<QMessageBox> question = alert();
    window.orbStack.setMachines({u"new"_s, u"other"_s, u"box"_s});
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    ASSERT_EQ(list().count(), 3);
    ASSERT_NE(question, nullptr);
    EXPECT_TRUE(question->isVisible());
    EXPECT_EQ(question->text(), u"Delete web?"_s);
    press(*question, u"Delete"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<delete><-f><web>"_s), 1);
}

TEST_F(MachinesViewTest, TellsOfAMachineThatWentAwayBeforeThePress)
{
    show();
    window.orbStack.tools().addTool(
        u"orb"_s, u"case \"$1\" in list) echo '[]' ;; *) echo \"no machine found: '$2'\" >&2; exit 1 ;; esac"_s);
    press(view(), u"Stop"_s, u"Stop box"_s);
    ASSERT_TRUE(untilIdle());
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    ASSERT_TRUE(waitUntil([log] { return log->shownText() == u"orb stop box failed: no machine found: 'box'\n"_s; }));
    ASSERT_TRUE(waitUntil([this] { return list().count() == 0; }));
}

TEST_F(MachinesViewTest, TellsOfAMachineThatWentAwayWhileItsDeletionWasAskedFor)
{
    show();
    press(view(), u"Delete"_s, u"Delete box"_s);
    window.orbStack.tools().addTool(u"orb"_s, u"case \"$1\" in list) echo '[]' ;; *) echo \"no machine found\" >&2; "
                                              "exit 1 ;; esac"_s);
    press(*alert(), u"Delete"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(window.machines.log(), u"Delete failed: no machine found\n"_s);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 0; }));
    EXPECT_TRUE(shows(view(), noMachines));
}

TEST_F(MachinesViewTest, GoesOnWithAnOperationWhileAnotherTabIsShown)
{
    show();
    holdOperations(u"fetching\\n"_s);
    nameField().setText(u"scratch"_s);
    press(view(), u"Create"_s);
    window.content().setTab(AppTab::run);
    QTest::qWait(0);
    window.content().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChildren<MachinesView *>().size() == 1; }));
    EXPECT_EQ(nameField().text(), QString());
    EXPECT_NE(find<QProgressBar>(view(), u"In progress"_s), nullptr);
    EXPECT_FALSE(isOffered(view(), u"Stop"_s, u"Stop box"_s));
    release();
    ASSERT_TRUE(untilIdle());
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    ASSERT_TRUE(waitUntil([log] { return log->shownText().endsWith(u"fetching\n\nMachine scratch is ready.\n"_s); }));
}

TEST_F(MachinesViewTest, GoesAwayWithItsQuestion)
{
    show();
    press(view(), u"Delete"_s, u"Delete box"_s);
    const QPointer<QMessageBox> question = alert();
    window.content().setTab(AppTab::run);
    ASSERT_TRUE(waitUntil([&question] { return question == nullptr; }));
    window.content().setTab(AppTab::machines);
    press(view(), u"Delete"_s, u"Delete box"_s);
    window.close();
    EXPECT_FALSE(window.machines.busy());
    EXPECT_EQ(calls(u"<delete><-f><box>"_s), 0);
}

TEST_F(MachinesViewTest, ShowsTwoMachinesOfTheSameName)
{
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(R"([{"name":"box","state":"running"},{"name":"box","state":"stopped"}])");
    window.show().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 2; }));
    EXPECT_EQ(rowTexts(0)[1], u" · running"_s);
    EXPECT_EQ(rowTexts(1)[1], u" · stopped"_s);
    QTest::mouseClick(list().row(1)->buttons()[0], Qt::LeftButton);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<start><box>"_s), 1);
}

TEST_F(MachinesViewTest, SetsItsTextsInTheTypeOfTheirRank)
{
    show();
    const QList<PlainLabel *> lines = list().row(0)->findChildren<PlainLabel *>();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0]->font(), Typography::headline());
    EXPECT_EQ(lines[1]->font(), Typography::caption());
    EXPECT_EQ(lines[1]->palette().color(QPalette::WindowText), Colours::secondary(view().palette()));
    const auto *introduction =
        find<PlainLabel>(view(), u"Machines are real Linux systems on this Mac. They stay until you delete them."_s);
    EXPECT_EQ(introduction->font(), Typography::callout());
    EXPECT_EQ(introduction->palette().color(QPalette::WindowText), Colours::secondary(view().palette()));
    nameField().setText(u"NO"_s);
    press(view(), u"Create"_s);
    auto *log = find<LogBox>(view(), u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    EXPECT_EQ(log->font(), Typography::monospaced(11));
    EXPECT_EQ(log->width(), view().contentsRect().width() - 24);
}

TEST_F(MachinesViewTest, ShowsHostileNamesAsTheyAre)
{
    const QString html = u"<img src='x'><b>box</b>"_s;
    const QString reversed = u"box\u202etxt.exe"_s;
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(u"[{\"name\":\"%1\"},{\"name\":\"%2\"},{\"name\":\"%3\",\"state\":\"%3\"}]"_s
                                       .arg(html, reversed, QString(1000000, u'w'))
                                       .toUtf8());
    window.show().setTab(AppTab::machines);
    ASSERT_TRUE(waitUntil([this] { return list().count() == 3; }));
    const QSize size = window.content().size();
    EXPECT_EQ(rowTexts(0)[0], html);
    EXPECT_EQ(rowTexts(1)[0], u"box⟨U+202E⟩txt.exe"_s);
    EXPECT_LT(rowTexts(2)[1].size(), 2000);
    press(view(), u"Delete"_s, u"Delete "_s + html);
    EXPECT_EQ(alert()->text(), u"Delete "_s + html + u'?');
    EXPECT_EQ(alert()->textFormat(), Qt::PlainText);
    press(*alert(), u"Cancel"_s);
    ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
    QTest::mouseClick(list().row(1)->buttons()[2], Qt::LeftButton);
    EXPECT_EQ(alert()->text(), u"Delete box⟨U+202E⟩txt.exe?"_s);
    press(*alert(), u"Cancel"_s);
    ASSERT_TRUE(waitUntil([this] { return alert() == nullptr; }));
    QTest::mouseClick(list().row(2)->buttons()[2], Qt::LeftButton);
    EXPECT_LT(alert()->text().size(), 300);
    EXPECT_LE(alert()->width(), 1000);
    EXPECT_EQ(window.content().size(), size);
}

TEST_F(MachinesViewTest, PaintsNothingForARefreshThatChangesNothing)
{
    QApplication::setCursorFlashTime(0);
    QStringList names;
    for (int number = 0; number < 1000; ++number)
        names << u"box%1"_s.arg(number);
    show(names);
    list().verticalScrollBar()->setValue(3000);
    QTest::qWait(50);
    PaintWatch watch(window.content());
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    QTest::qWait(50);
    EXPECT_EQ(watch.count(), 0);
    EXPECT_EQ(list().verticalScrollBar()->value(), 3000);
}

TEST_F(MachinesViewTest, RepaintsOnlyTheRowOfTheMachineThatChanged)
{
    QApplication::setCursorFlashTime(0);
    show();
    QTest::qWait(50);
    window.orbStack.setMachineList(
        R"([{"name":"box","state":"running","image":{"distro":"ubuntu","version":"noble"}},
            {"name":"web","state":"stopped","image":{"distro":"ubuntu","version":"noble"}}])");
    PaintWatch watch(window.content());
    ASSERT_TRUE(waitFor(window.machines.refresh()));
    QTest::qWait(50);
    EXPECT_GT(watch.count(), 0);
    EXPECT_TRUE(watch.isWithin(*list().row(1)));
}

TEST_F(MachinesViewTest, IsUsableByKeyboardAlone)
{
    show();
    nameField().setFocus();
    QTest::keyClicks(&nameField(), u"scratch"_s);
    const auto press = [](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    };
    press(Qt::Key_Tab);
    EXPECT_EQ(ByName::nameOf(QApplication::focusWidget()), u"Create"_s);
    press(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<create><ubuntu><scratch>"_s), 1);
    // The button was disabled meanwhile; the keyboard waits beside it.
    EXPECT_EQ(QApplication::focusWidget(), &nameField());
    press(Qt::Key_Tab);
    press(Qt::Key_Tab); // the log
    if (ByName::nameOf(QApplication::focusWidget()) == u"Machine log"_s)
        press(Qt::Key_Tab);
    EXPECT_EQ(ByName::descriptionOf(QApplication::focusWidget()), u"Stop box"_s);
    press(Qt::Key_Down);
    EXPECT_EQ(ByName::descriptionOf(QApplication::focusWidget()), u"Stop web"_s);
    press(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><web>"_s), 1);
    EXPECT_EQ(ByName::descriptionOf(QApplication::focusWidget()), u"Stop web"_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(ByName::descriptionOf(QApplication::focusWidget()), u"Delete web"_s);
    press(Qt::Key_Space);
    ASSERT_NE(alert(), nullptr);
    ASSERT_TRUE(waitUntil([this] { return alert()->isActiveWindow(); }));
    QPushButton *accept = find<QPushButton>(*alert(), u"Delete"_s);
    for (int tabs = 0; tabs < 3 && QApplication::focusWidget() != accept; ++tabs)
        press(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), accept);
    press(Qt::Key_Space);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<delete><-f><web>"_s), 1);
}

TEST_F(MachinesViewTest, CreatesOnReturnInTheNameField)
{
    show();
    nameField().setText(u"scratch"_s);
    QTest::keyClick(&nameField(), Qt::Key_Return);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<create><ubuntu><scratch>"_s), 1);
    nameField().setText(u" "_s);
    QTest::keyClick(&nameField(), Qt::Key_Return);
    EXPECT_FALSE(window.machines.busy());
}

TEST_F(MachinesViewTest, StaysUsableWithFiveThousandMachines)
{
    QStringList names;
    for (int number = 0; number < 5000; ++number)
        names << u"box%1"_s.arg(number);
    show(names);
    EXPECT_EQ(list().count(), 5000);
    EXPECT_LT(list().widgetCount(), 100);
    list().row(4999)->buttons()[1]->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(list().verticalScrollBar()->value(), list().verticalScrollBar()->maximum());
    press(view(), u"Stop"_s, u"Stop box4999"_s);
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(calls(u"<stop><box4999>"_s), 1);
}
