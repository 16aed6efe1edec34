#include "Screens/ContentView/Screens/Run/RunViewSteps.h"
#include "Screens/TimerWatch.h"
#include "Unit/Transcript/RandomText.h"

#include <QRegularExpression>

#include <optional>

namespace
{

const auto earlierOutput = u"Earlier output is kept: Run ▸ Show All Output"_s;

/// More than the screen keeps, in two pieces of different kinds, so that the first one goes.
void appendTooMuch(RunController &run)
{
    run.append(QString(Transcript::characterBound + 1, u'x'), OutputKind::out);
    run.append(u"\nthe rest\n"_s, OutputKind::err);
}

/// How long a run has been going as far as it is shown; nothing when it is not.
std::optional<int> secondsShown(const ContentView &content)
{
    static const QRegularExpression form(u"^(\\d+)s$"_s);
    for (const PlainLabel *label : content.findChildren<PlainLabel *>()) {
        const QRegularExpressionMatch match = form.match(label->text());
        if (label->isVisible() && match.hasMatch())
            return match.captured(1).toInt();
    }
    return std::nullopt;
}

} // namespace

TEST(RunView, RunsAScriptInTheChosenMachineAndRecordsIt)
{
    TestWindow window;
    window.showRunning({u"box"_s, u"two"_s});
    find<MachinePicker>(window.content(), u"Machine"_s)->setCurrentIndex(1);
    EXPECT_TRUE(runScript(window, u"echo hello"_s).startsWith(u"$ orb -m two bash -s\nhello\n\nexit status 0"_s));
    ASSERT_EQ(window.history.entries().size(), 1);
    EXPECT_EQ(window.history.entries()[0].command, u"echo hello"_s);
    EXPECT_EQ(window.history.entries()[0].machine, u"two"_s);
}

TEST(RunView, OffersRunOnlyWithOrbStackAScriptAndAMachine)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    EXPECT_FALSE(isOffered(content, u"Run"_s));
    for (const QString &blank : {u" "_s, u"\n"_s, u" \n\t \r\n"_s}) {
        window.run.setScript(blank);
        EXPECT_FALSE(isOffered(content, u"Run"_s));
    }
    window.run.setScript(u"\n true \n"_s);
    EXPECT_TRUE(isOffered(content, u"Run"_s));
    window.orbStack.setMachines({});
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_FALSE(isOffered(content, u"Run"_s));
    confirmDisposable();
    toggle(content, u"Disposable mode"_s)->click();
    EXPECT_TRUE(isOffered(content, u"Run"_s));
    window.orbStack.setRunning(false);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_FALSE(isOffered(content, u"Run"_s));
}

TEST(RunView, NeverOffersRunOnAMacThatIsTooOld)
{
    TestWindow window(false);
    ContentView &content = window.showRunning({u"box"_s});
    window.run.setScript(u"true"_s);
    EXPECT_FALSE(isOffered(content, u"Run"_s));
}

TEST(RunView, SaysThatOrbStackMustBeStarted)
{
    TestWindow window;
    ContentView &content = window.show();
    EXPECT_TRUE(shows(content, startHint));
    EXPECT_EQ(find<PlainLabel>(content, startHint)->palette().color(QPalette::WindowText),
              Colours::secondary(content.palette()));
    window.orbStack.setRunning(true);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_FALSE(shows(content, startHint));
}

TEST(RunView, RunsByKeyboardFromTheEditor)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    QTest::keyClicks(content.focusWidget(), u"echo typed"_s);
    EXPECT_EQ(window.run.script(), u"echo typed"_s);
    QTest::keyClick(content.focusWidget(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([&] { return window.history.entries().size() == 1; }));
    QTest::keyClick(content.focusWidget(), Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier);
    EXPECT_TRUE(waitUntil([&] { return window.history.entries().size() == 2; }));
    EXPECT_EQ(window.run.script(), u"echo typed"_s);
}

TEST(RunView, ShowsARunAndStopsIt)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    window.run.setScript(u"echo on; exec sleep 600"_s);
    EXPECT_EQ(find<QPushButton>(content, u"Stop"_s, u"Stop the run"_s), nullptr);
    const auto *spinner = content.findChild<Spinner *>();
    ASSERT_NE(spinner, nullptr);
    EXPECT_FALSE(spinner->isVisible());
    find<QAbstractButton>(content, u"Run"_s)->setFocus();
    const TimerWatch second(std::chrono::seconds(1));
    QTest::keyClick(content.focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(window.run.isRunning());
    EXPECT_EQ(find<QPushButton>(content, u"Run"_s), nullptr);
    EXPECT_TRUE(shows(content, u"Running in box"_s));
    EXPECT_TRUE(shows(content, u"0s"_s));
    EXPECT_TRUE(spinner->isVisible());
    EXPECT_TRUE(waitUntil([&] { return secondsShown(content) >= 1; }));
    const auto before = secondsShown(content);
    EXPECT_TRUE(waitUntil([&] { return secondsShown(content) > before; }));
    EXPECT_LE(secondsShown(content), window.run.startedAt()->secsTo(QDateTime::currentDateTimeUtc()) + 1);
    EXPECT_NE(second.timer(), nullptr) << "it is looked at each second";
    EXPECT_TRUE(waitUntil([&] { return window.run.plainText().contains(u"\non\n"_s); }));
    EXPECT_EQ(ByName::descriptionOf(content.focusWidget()), u"Stop the run"_s);
    press(content, u"Stop"_s, u"Stop the run"_s);
    EXPECT_TRUE(waitUntil([&] { return isOffered(content, u"Run"_s); }));
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Run"_s);
    EXPECT_FALSE(shows(content, u"Running in box"_s));
    EXPECT_FALSE(spinner->isVisible());
    EXPECT_TRUE(window.run.plainText().endsWith(u"\nStopped by user.\n"_s));
}

TEST(RunView, FindsTheRunStillGoingAfterATabChange)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    window.run.setScript(u"exec sleep 600"_s);
    press(content, u"Run"_s);
    content.setTab(AppTab::history);
    content.setTab(AppTab::run);
    EXPECT_TRUE(shows(content, u"Running in box"_s));
    press(content, u"Stop"_s, u"Stop the run"_s);
    EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
}

TEST(RunView, PicksTheFirstRunningMachineElseTheFirst)
{
    TestWindow window;
    window.orbStack.setMachineList(
        R"([{"name":"off","state":"stopped"},{"name":"on","state":"running"},{"name":"also","state":"running"}])");
    ContentView &content = window.show();
    const auto *picker = find<MachinePicker>(content, u"Machine"_s);
    EXPECT_EQ(picker->currentText(), u"No machines"_s);
    EXPECT_EQ(picker->count(), 1);
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(picker->currentText(), u"on"_s);
    EXPECT_EQ(picker->count(), 3);
    window.orbStack.setMachineList(R"([{"name":"odd","state":"Running"},{"name":"new","state":"running"}])");
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(picker->currentText(), u"new"_s);
    window.orbStack.setMachineList(R"([{"name":"off","state":"stopped"},{"name":"other","state":"stopped"}])");
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(picker->currentText(), u"off"_s);
    window.orbStack.setMachineList("[]");
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_EQ(picker->currentText(), u"No machines"_s);
    EXPECT_EQ(content.findChild<RunView *>()->selectedMachine(), nullptr);
}

TEST(RunView, KeepsTheChosenMachineAndAnOpenListThroughARefresh)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"a"_s, u"b"_s, u"c"_s});
    auto *picker = find<MachinePicker>(content, u"Machine"_s);
    picker->setCurrentIndex(1);
    picker->showPopup();
    EXPECT_TRUE(picker->view()->isVisible());
    window.orbStack.setMachines({u"new"_s, u"a"_s, u"b"_s});
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    EXPECT_TRUE(picker->view()->isVisible());
    EXPECT_EQ(picker->count(), 3);
    EXPECT_EQ(picker->itemText(0), u"new"_s);
    EXPECT_EQ(picker->currentText(), u"b"_s);
    picker->hidePopup();
    EXPECT_EQ(content.findChild<RunView *>()->selectedMachine()->name, u"b"_s);
}

TEST(RunView, OffersFiveThousandMachinesAndHostileNamesWithoutWidening)
{
    TestWindow window;
    QStringList names{u"<b>bold</b>"_s, u"evil\u202etxt"_s, QString(1000000, u'n')};
    for (int number = 0; number < 5000; ++number)
        names.append(u"m%1"_s.arg(number));
    ContentView &content = window.showRunning(names);
    const auto *picker = find<MachinePicker>(content, u"Machine"_s);
    EXPECT_EQ(picker->count(), 5003);
    EXPECT_EQ(picker->itemText(0), u"<b>bold</b>"_s);
    EXPECT_EQ(picker->itemText(1), u"evil\u27e8U+202E\u27e9txt"_s);
    EXPECT_LE(picker->parentWidget()->width(), 300);
    content.resize(820, 640);
    EXPECT_EQ(content.width(), 820);
    EXPECT_LE(content.findChild<RunView *>()->width(), 820);
    find<MachinePicker>(content, u"Machine"_s)->setCurrentIndex(2);
    EXPECT_EQ(content.findChild<RunView *>()->selectedMachine()->name.size(), 1000000);
}

TEST(RunView, LimitsTheTimeUnlessToldOtherwise)
{
    TestWindow window(true, RunTimeLimits{.script = 0.3});
    ContentView &content = window.showRunning({u"box"_s});
    EXPECT_TRUE(toggle(content, u"10 minute time limit"_s)->isChecked());
    EXPECT_TRUE(runScript(window, u"exec sleep 600"_s).contains(u"\nTimed out after 10 minutes and was stopped.\n"_s));
    toggle(content, u"10 minute time limit"_s)->click();
    window.run.clearTranscript();
    EXPECT_TRUE(runScript(window, u"sleep 0.6; echo through"_s).contains(u"through\n\nexit status 0"_s));
}

TEST(RunView, RunsUnderTheShellOfTheChosenMachinesDistribution)
{
    TestWindow window;
    window.orbStack.setRunning(true);
    window.orbStack.setMachineList(R"([{"name":"small","state":"running","image":{"distro":"alpine"}}])");
    window.show();
    EXPECT_TRUE(waitUntil([&] { return window.machines.machines().size() == 1; }));
    EXPECT_TRUE(runScript(window, u"true"_s).startsWith(u"$ orb -m small sh -s\n"_s));
}

TEST(RunView, CopiesAndClearsTheOutput)
{
    TestWindow window;
    ContentView &content = window.show();
    window.run.append(u"one <b>\n"_s, OutputKind::out);
    window.run.append(u"two\n"_s, OutputKind::err);
    EXPECT_TRUE(shows(content, u"Output"_s));
    press(content, u"Copy output"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"one <b>\ntwo\n"_s);
    press(content, u"Clear"_s, u"Clear the output"_s);
    EXPECT_TRUE(window.run.transcript().isEmpty());
}

TEST(RunView, ShowsItsTextsAsPlainText)
{
    TestWindow window;
    ContentView &content = window.show();
    for (const QLabel *label : content.findChildren<QLabel *>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
}

TEST(RunView, SaysUnderItsHeaderHowMuchOfTheOutputCouldNotBeKept)
{
    TextStorage storage;
    storage.plainBlocks = 4;
    storage.packedBytes = TextStorage::mebibyte;
    storage.folder = "/nowhere";
    TestWindow window(true, {}, storage);
    ContentView &content = window.showRunning({u"box"_s});
    const int width = window.content().width();
    window.run.append(u"x"_s, OutputKind::out);
    EXPECT_EQ(window.run.outputLoss(), QString());
    RandomText random(5);
    QByteArray noise(8'000'000, Qt::Uninitialized);
    for (char &byte : noise)
        byte = static_cast<char>(' ' + random.below(64));
    window.run.append(QUtf8StringView(noise), OutputKind::out);
    EXPECT_TRUE(waitUntil([&] { return !window.run.outputLoss().isEmpty(); }));
    const QString told = window.run.outputLoss();
    EXPECT_TRUE(told.startsWith(u"The first "_s));
    EXPECT_TRUE(shows(content, told));
    EXPECT_EQ(content.width(), width);
    press(content, u"Clear"_s);
    EXPECT_EQ(window.run.outputLoss(), QString());
    EXPECT_FALSE(shows(content, told));
}

TEST(RunView, TellsOfEarlierOutputOnlyWhileThereIsSome)
{
    TestWindow window;
    ContentView &content = window.show();
    EXPECT_FALSE(shows(content, earlierOutput));
    window.run.append(u"a line\n"_s, OutputKind::out);
    EXPECT_FALSE(shows(content, earlierOutput));
    appendTooMuch(window.run);
    EXPECT_TRUE(shows(content, earlierOutput));
    const QPointer<QLabel> before = find<QLabel>(content, earlierOutput);
    content.setTab(AppTab::machines);
    EXPECT_TRUE(waitUntil([&before] { return before == nullptr; }));
    content.setTab(AppTab::run);
    EXPECT_TRUE(shows(content, earlierOutput));
    window.run.clearTranscript();
    EXPECT_FALSE(shows(content, earlierOutput));
}

TEST(RunView, TellsOfNoEarlierOutputOfARunBefore)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    appendTooMuch(window.run);
    EXPECT_TRUE(shows(content, earlierOutput));
    window.run.setScript(u"true"_s);
    press(content, u"Run"_s);
    EXPECT_FALSE(shows(content, earlierOutput));
}

TEST(RunView, IsNoWiderForTellingOfEarlierOutput)
{
    TestWindow window;
    ContentView &content = window.show();
    const QSize least = content.minimumSizeHint();
    const QSize wanted = content.sizeHint();
    appendTooMuch(window.run);
    auto *label = find<QLabel>(content, earlierOutput);
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(content.minimumSizeHint().width(), least.width());
    EXPECT_EQ(content.sizeHint().width(), wanted.width());
    content.resize(content.minimumSize());
    EXPECT_TRUE(waitUntil([&] { return label->width() >= label->sizeHint().width(); })) << "and has room in it";
}

TEST(RunView, DoesNotTakeTheSecondOfTwoQuickClicksForAnotherWish)
{
    QApplication::setDoubleClickInterval(5000);
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    window.run.setScript(window.orbStack.tools().waitForFile(u"go"_s));
    const auto *runButton = find<QPushButton>(content, u"Run"_s);
    const QPoint place = runButton->mapToGlobal(QPoint(10, runButton->height() / 2));
    const auto pressHere = [&](QEvent::Type type) {
        QWidget *under = content.childAt(content.mapFromGlobal(place));
        ASSERT_NE(under, nullptr);
        for (const QEvent::Type part : {type, QEvent::MouseButtonRelease}) {
            QMouseEvent event(part, under->mapFromGlobal(place), place, Qt::LeftButton,
                              part == type ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(under, &event);
        }
    };
    pressHere(QEvent::MouseButtonPress);
    ASSERT_TRUE(window.run.isRunning());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    auto *stop = find<QPushButton>(content, u"Stop"_s, u"Stop the run"_s);
    ASSERT_EQ(content.childAt(content.mapFromGlobal(place)), stop) << "it lies where Run was";
    pressHere(QEvent::MouseButtonDblClick);
    window.orbStack.tools().addFile(u"go"_s);
    EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
    EXPECT_FALSE(window.run.plainText().contains(u"Stopped by user."_s));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    pressHere(QEvent::MouseButtonPress);
    EXPECT_FALSE(window.run.isRunning()) << "nor is the script run again when Run comes back";
    EXPECT_EQ(window.history.entries().size(), 1);
    QApplication::setDoubleClickInterval(1);
    EXPECT_TRUE(waitUntil([&] {
        pressHere(QEvent::MouseButtonPress);
        return window.run.isRunning() || window.history.entries().size() == 2;
    })) << "after a moment it is";
    EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
}
