#include "ContentView/Colours.h"
#include "ContentView/MachinePicker.h"
#include "ContentView/PlainLabel.h"
#include "ContentView/RunView.h"
#include "ContentView/ScriptEditor.h"
#include "ContentView/Spinner.h"
#include "Screens/TestWindow.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>

using namespace Qt::StringLiterals;
using ByName::find;
using ByName::isOffered;
using ByName::press;
using ByName::shows;

namespace
{

const auto packagesField = u"Packages, e.g. git curl"_s;
const auto warning =
    u"Warning: a script can change or delete files in a shared folder. The command runs with that folder "
    "as its working directory."_s;
const auto nothingPersists = u"Each run creates a fresh machine, runs in it, then deletes it. Nothing persists."_s;
const auto startHint = u"Start OrbStack to run commands."_s;

void confirmDisposable()
{
    QSettings().setValue(u"disposableConfirmed"_s, true);
}

QMessageBox *alert()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        if (box != nullptr && box->isVisible())
            return box;
    }
    return nullptr;
}

QCheckBox *toggle(const QWidget &content, const QString &name)
{
    return find<QCheckBox>(content, name);
}

QFileDialog *openFolderDialog(ContentView &content)
{
    press(content, u"Share a folder…"_s);
    return content.findChild<QFileDialog *>();
}

void shareFolder(ContentView &content, const QString &path)
{
    QFileDialog *dialog = openFolderDialog(content);
    ASSERT_NE(dialog, nullptr);
    dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
    press(*dialog, u"Share"_s);
    EXPECT_FALSE(dialog->isVisible());
}

QString runScript(TestWindow &window, const QString &script)
{
    window.run.setScript(script);
    press(window.content(), u"Run"_s);
    EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
    return window.run.plainText();
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
    window.run.setScript(u"echo on; exec sleep 60"_s);
    EXPECT_EQ(find<QPushButton>(content, u"Stop"_s, u"Stop the run"_s), nullptr);
    find<QAbstractButton>(content, u"Run"_s)->setFocus();
    QTest::keyClick(content.focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(window.run.isRunning());
    EXPECT_EQ(find<QPushButton>(content, u"Run"_s), nullptr);
    EXPECT_TRUE(shows(content, u"Running in box"_s));
    EXPECT_TRUE(shows(content, u"0s"_s));
    EXPECT_NE(content.findChild<Spinner *>(), nullptr);
    EXPECT_TRUE(waitUntil([&] { return shows(content, u"1s"_s); }));
    EXPECT_TRUE(waitUntil([&] { return shows(content, u"2s"_s); }));
    EXPECT_TRUE(waitUntil([&] { return window.run.plainText().contains(u"\non\n"_s); }));
    EXPECT_EQ(ByName::descriptionOf(content.focusWidget()), u"Stop the run"_s);
    press(content, u"Stop"_s, u"Stop the run"_s);
    EXPECT_TRUE(waitUntil([&] { return isOffered(content, u"Run"_s); }));
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Run"_s);
    EXPECT_FALSE(shows(content, u"Running in box"_s));
    EXPECT_TRUE(window.run.plainText().endsWith(u"\nStopped by user.\n"_s));
}

TEST(RunView, FindsTheRunStillGoingAfterATabChange)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    window.run.setScript(u"exec sleep 60"_s);
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

TEST(RunView, AsksOnceBeforeItTurnsDisposableModeOn)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    QCheckBox *disposable = toggle(content, u"Disposable mode"_s);
    disposable->setFocus();
    QTest::keyClick(disposable, Qt::Key_Space);
    EXPECT_FALSE(disposable->isChecked());
    QMessageBox *box = alert();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), u"Use disposable mode?"_s);
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
    EXPECT_EQ(box->informativeText(),
              u"Every run will create a brand new Linux machine, run your commands, and then delete the machine. This "
              "takes longer, and anything created inside is lost."_s);
    EXPECT_EQ(box->windowModality(), Qt::WindowModal);
    ASSERT_EQ(box->buttons().size(), 2);
    EXPECT_TRUE(isOffered(*box, u"Turn on"_s));
    press(*box, u"Cancel"_s);
    EXPECT_FALSE(disposable->isChecked());
    EXPECT_FALSE(QSettings().value(u"disposableConfirmed"_s).toBool());
    EXPECT_FALSE(shows(content, nothingPersists));

    QTest::keyClick(disposable, Qt::Key_Space);
    ASSERT_NE(alert(), nullptr);
    QTest::keyClick(alert(), Qt::Key_Escape);
    EXPECT_FALSE(disposable->isChecked());
    EXPECT_EQ(alert(), nullptr);
    EXPECT_EQ(content.focusWidget(), disposable);

    QTest::keyClick(disposable, Qt::Key_Space);
    ASSERT_NE(alert(), nullptr);
    press(*alert(), u"Turn on"_s);
    EXPECT_TRUE(disposable->isChecked());
    EXPECT_TRUE(QSettings().value(u"disposableConfirmed"_s).toBool());
    EXPECT_TRUE(shows(content, nothingPersists));
    EXPECT_EQ(content.focusWidget(), disposable);

    QTest::keyClick(disposable, Qt::Key_Space);
    EXPECT_FALSE(disposable->isChecked());
    QTest::keyClick(disposable, Qt::Key_Space);
    EXPECT_TRUE(disposable->isChecked());
    EXPECT_EQ(alert(), nullptr);
}

TEST(RunView, FitsTheSmallestWindowWithEverythingOn)
{
    TestWindow window;
    QSettings().setValue(u"disposableConfirmed"_s, true);
    ContentView &content = window.showRunning({u"box"_s});
    content.resize(820, 640);
    find<QCheckBox>(content, u"Disposable mode"_s)->click();
    shareFolder(content, QDir::tempPath());
    const auto *screen = content.findChild<RunView *>();
    EXPECT_TRUE(waitUntil([screen] { return screen->height() == screen->parentWidget()->height(); }))
        << screen->height() << " in " << screen->parentWidget()->height();
    EXPECT_EQ(screen->width(), 820);
}

TEST(RunView, LosesItsAlertWithItself)
{
    TestWindow window;
    ContentView &content = window.show();
    toggle(content, u"Disposable mode"_s)->click();
    ASSERT_NE(alert(), nullptr);
    content.setTab(AppTab::history);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(alert(), nullptr);
}

TEST(RunView, RunsInADisposableMachineOfTheChosenDistribution)
{
    TestWindow window;
    confirmDisposable();
    ContentView &content = window.showRunning({u"box"_s});
    auto *picker = find<MachinePicker>(content, u"Machine"_s);
    EXPECT_TRUE(picker->isEnabled());
    EXPECT_EQ(find<QComboBox>(content, u"Distribution"_s), nullptr);
    toggle(content, u"Disposable mode"_s)->click();
    EXPECT_TRUE(picker->isVisible());
    EXPECT_FALSE(picker->isEnabled());
    auto *distribution = find<QComboBox>(content, u"Distribution"_s);
    ASSERT_NE(distribution, nullptr);
    EXPECT_EQ(distribution->width(), 100);
    QStringList offered;
    for (int index = 0; index < distribution->count(); ++index)
        offered.append(distribution->itemText(index));
    EXPECT_EQ(offered, QStringList({u"ubuntu"_s, u"debian"_s, u"alpine"_s}));
    EXPECT_EQ(distribution->currentText(), u"ubuntu"_s);
    distribution->setCurrentIndex(2);
    const QString output = runScript(window, u"echo inside"_s);
    EXPECT_TRUE(output.contains(u" (alpine)…\n"_s));
    EXPECT_TRUE(output.contains(u" sh -s\ninside\n"_s));
    ASSERT_EQ(window.history.entries().size(), 1);
    EXPECT_EQ(window.history.entries()[0].machine, u"disposable (alpine)"_s);
}

TEST(RunView, SharesAFolderAndGivesItUp)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    const QString folder = window.orbStack.tools().directory(0);
    EXPECT_FALSE(shows(content, warning));
    EXPECT_EQ(find<QAbstractButton>(content, u"Clear"_s, u"Stop sharing the folder"_s), nullptr);
    shareFolder(content, folder);
    EXPECT_TRUE(shows(content, folder));
    EXPECT_TRUE(shows(content, warning));
    EXPECT_EQ(find<PlainLabel>(content, warning)->palette().color(QPalette::WindowText),
              Colours::orange(content.palette()));
    EXPECT_TRUE(runScript(window, u"pwd"_s).contains(u"   (folder: "_s + folder + u")\n"_s + folder + u'\n'));
    press(content, u"Clear"_s, u"Stop sharing the folder"_s);
    EXPECT_FALSE(shows(content, folder));
    EXPECT_FALSE(shows(content, warning));
    window.run.clearTranscript();
    EXPECT_FALSE(runScript(window, u"pwd"_s).contains(u"(folder: "_s));
}

TEST(RunView, AsksForOneFolderInADialogThatBlocksNothing)
{
    TestWindow window;
    ContentView &content = window.show();
    find<QAbstractButton>(content, u"Share a folder…"_s)->setFocus();
    QFileDialog *dialog = openFolderDialog(content);
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(dialog->testOption(QFileDialog::ShowDirsOnly));
    EXPECT_EQ(dialog->labelText(QFileDialog::Accept), u"Share"_s);
    EXPECT_EQ(dialog->windowModality(), Qt::WindowModal);
    dialog->reject();
    EXPECT_FALSE(shows(content, warning));
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Share a folder…"_s);
}

TEST(RunView, ShowsAFoldersPathCutInItsMiddleAndUndisguised)
{
    TestWindow window;
    ContentView &content = window.show();
    content.resize(820, 640);
    const QString path = u"/home/<i>x</i>/\u202eevil/"_s + QString(4000, u'p') + u"/last"_s;
    // No real folder has such a path here, so the dialog's answer is given in its place.
    QFileDialog *dialog = openFolderDialog(content);
    ASSERT_NE(dialog, nullptr);
    Q_EMIT dialog->fileSelected(path);
    dialog->reject();
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(content.width(), 820);
    EXPECT_LE(content.findChild<RunView *>()->width(), 820);
    bool isShown = false;
    for (const PlainLabel *label : content.findChildren<PlainLabel *>()) {
        if (label->isVisible() && label->text().startsWith(u"/home/<i>x</i>/\u27e8U+202E\u27e9evil/"_s)) {
            isShown = true;
            EXPECT_TRUE(label->text().endsWith(u"/last"_s));
            EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()));
        }
    }
    EXPECT_TRUE(isShown);
    EXPECT_TRUE(isOffered(content, u"Clear"_s, u"Stop sharing the folder"_s));
    EXPECT_TRUE(content.rect().contains(QRect(toggle(content, u"10 minute time limit"_s)->mapTo(&content, QPoint()),
                                              toggle(content, u"10 minute time limit"_s)->size())));
}

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

    window.run.setScript(u"exec sleep 60"_s);
    press(content, u"Run"_s);
    EXPECT_FALSE(offered());
    press(content, u"Stop"_s, u"Stop the run"_s);
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

TEST(RunView, LimitsTheTimeUnlessToldOtherwise)
{
    TestWindow window(true, RunTimeLimits{.script = 0.3});
    ContentView &content = window.showRunning({u"box"_s});
    EXPECT_TRUE(toggle(content, u"10 minute time limit"_s)->isChecked());
    EXPECT_TRUE(runScript(window, u"exec sleep 60"_s).contains(u"\nTimed out after 10 minutes and was stopped.\n"_s));
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

TEST(RunView, ForgetsDisposableModeWithTheScreenButNotTheConsent)
{
    TestWindow window;
    confirmDisposable();
    ContentView &content = window.show();
    toggle(content, u"Disposable mode"_s)->click();
    EXPECT_TRUE(toggle(content, u"Disposable mode"_s)->isChecked());
    content.setTab(AppTab::history);
    content.setTab(AppTab::run);
    EXPECT_FALSE(toggle(content, u"Disposable mode"_s)->isChecked());
    toggle(content, u"Disposable mode"_s)->click();
    EXPECT_TRUE(toggle(content, u"Disposable mode"_s)->isChecked());
    EXPECT_EQ(alert(), nullptr);
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
