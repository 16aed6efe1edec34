#include "Screens/ContentView/Screens/HistoryViewTest.h"

#include "ContentView/Screens/DateText.h"
#include "HistoryStore/HistoryFile.h"
#include "Screens/PaintWatch.h"
#include "Support/ProcessorTimer.h"

#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>
#include <QScrollBar>

TEST_F(HistoryViewTest, SaysSoWhenThereAreNoRuns)
{
    show();
    EXPECT_TRUE(shows(view(), u"Last 50 runs"_s));
    EXPECT_TRUE(shows(view(), noRuns));
    EXPECT_FALSE(isOffered(view(), u"Clear all"_s));
    EXPECT_TRUE(shows(view(), u"Clear all"_s));
    EXPECT_FALSE(list().isVisible());
}

TEST_F(HistoryViewTest, ShowsTheNewestRunFirstWithItsFourFacts)
{
    HistoryEntry failed = entryOf(u"\n\nmake test\nmake install"_s);
    failed.exitCode = -1;
    failed.duration = 59.96;
    window.history.add(failed);
    HistoryEntry stopped = entryOf(u"sleep 60"_s);
    stopped.machine = u"disposable (ubuntu)"_s;
    stopped.exitCode.reset();
    stopped.note = u"stopped"_s;
    stopped.duration = 0.04;
    window.history.add(stopped);
    HistoryEntry silent = entryOf(u"true"_s);
    silent.exitCode.reset();
    window.history.add(silent);
    show();
    ASSERT_EQ(list().count(), 3);
    EXPECT_EQ(rowTexts(0), (QStringList{u"true"_s, u"box · no exit status · 3.2s · 1 Mar 2026, 14:05"_s}));
    EXPECT_EQ(rowTexts(1), (QStringList{u"sleep 60"_s, u"disposable (ubuntu) · stopped · 0.0s · 1 Mar 2026, 14:05"_s}));
    EXPECT_EQ(rowTexts(2), (QStringList{u"make test"_s, u"box · exit -1 · 60.0s · 1 Mar 2026, 14:05"_s}));
    EXPECT_EQ(ByName::nameOf(list().row(2)), u"make test"_s);
    EXPECT_FALSE(shows(view(), noRuns));
    EXPECT_TRUE(isOffered(view(), u"Clear all"_s));
    const QList<PlainLabel *> labels = list().row(0)->findChildren<PlainLabel *>();
    EXPECT_EQ(labels[0]->font().pixelSize(), 12);
    EXPECT_EQ(labels[1]->palette().color(labels[1]->foregroundRole()), Colours::secondary(view().palette()));
}

TEST_F(HistoryViewTest, ShowsTheDateInTheUsersLanguage)
{
    qputenv("LC_TIME", "ar_EG.UTF-8");
    window.history.add(entryOf(u"true"_s));
    show();
    const QString date = DateText::mediumDateShortTime(window.history.entries()[0].date.toLocalTime(), "ar_EG");
    EXPECT_TRUE(rowTexts(0)[1].endsWith(u" · "_s + date)) << rowTexts(0)[1].toStdString();
    EXPECT_FALSE(rowTexts(0)[1].contains(u"U+200F"_s));
}

TEST_F(HistoryViewTest, LoadsTheWholeCommandIntoTheRunScreen)
{
    const QString command = u"\n\nmake test\n\n  make install\n"_s;
    window.history.add(entryOf(command));
    show();
    press(view(), u"Load"_s, u"Load make test"_s);
    EXPECT_EQ(window.run.script(), command);
    EXPECT_EQ(window.content().tab(), AppTab::run);
    EXPECT_EQ(window.history.entries().size(), 1);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChild<HistoryView *>() == nullptr; }));
}

TEST_F(HistoryViewTest, DeletesOneEntryAtOnce)
{
    addNumbered(3);
    show();
    press(view(), u"Delete"_s, u"Delete echo 1"_s);
    ASSERT_EQ(window.history.entries().size(), 2);
    EXPECT_EQ(rowTexts(0)[0], u"echo 2"_s);
    EXPECT_EQ(rowTexts(1)[0], u"echo 0"_s);
    for (const QString &each : {u"echo 2"_s, u"echo 0"_s}) {
        find<QPushButton>(view(), u"Delete"_s, u"Delete "_s + each)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    }
    EXPECT_TRUE(shows(view(), noRuns));
    EXPECT_FALSE(isOffered(view(), u"Clear all"_s));
    EXPECT_FALSE(list().isVisible());
}

TEST_F(HistoryViewTest, ClearsAllAtOnce)
{
    addNumbered(50);
    show();
    EXPECT_EQ(list().count(), 50);
    press(view(), u"Clear all"_s);
    EXPECT_TRUE(window.history.entries().isEmpty());
    EXPECT_TRUE(shows(view(), noRuns));
    EXPECT_FALSE(isOffered(view(), u"Clear all"_s));
}

TEST_F(HistoryViewTest, ShowsARunThatEndsWhileItIsOpen)
{
    addNumbered(2);
    show();
    const RowWidget *former = list().row(0);
    window.history.add(entryOf(u"new"_s));
    EXPECT_EQ(list().count(), 3);
    EXPECT_EQ(rowTexts(0)[0], u"new"_s);
    EXPECT_EQ(list().row(1), former);
}

TEST_F(HistoryViewTest, SaysSoWhileTheListCannotBeSaved)
{
    show();
    auto &note = *view().findChild<NoteText *>();
    EXPECT_FALSE(note.isVisible());
    const QString path = *window.history.fileURL();
    ASSERT_TRUE(QDir().mkpath(path)); // a folder in the file's place
    window.history.add(entryOf(u"true"_s));
    EXPECT_TRUE(note.isVisible());
    EXPECT_EQ(note.shownText(),
              u"The history could not be saved (what has its name is not a file); it is kept here and "
              "saved as soon as that is possible."_s);
    EXPECT_EQ(list().count(), 1) << "the list itself is there";
    ASSERT_TRUE(QDir().rmdir(path));
    window.history.save();
    EXPECT_FALSE(note.isVisible());
}

TEST_F(HistoryViewTest, IsQuickWithFiftyScriptsOfAMegabyte)
{
    const QString script = QString(u"echo a line of a long script\n"_s).repeated(36000);
    QList<HistoryEntry> others;
    for (int number = 0; number < 49; ++number)
        others.append(entryOf(script + QString::number(number)));
    // As another Tidewell would have left them: added one by one, they would be written a thousand times over.
    QFile file(*window.history.fileURL());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(HistoryFile::encode(others));
    file.close();
    const HistoryEntry oneLine = entryOf(QString(1000000, u'x'));
    window.history.add(oneLine);
    window.show();
    ProcessorTimer timer;
    timer.start();
    window.content().setTab(AppTab::history);
    window.content().grab();
    const qint64 opening = timer.elapsed();
    RecordProperty("openingMilliseconds", static_cast<int>(opening));
    EXPECT_LT(opening, 2000); // far above what it takes, so that a sanitizer passes
    EXPECT_EQ(list().count(), 50);
    EXPECT_LT(rowTexts(0)[0].size(), 2000);
    EXPECT_LT(ByName::nameOf(list().row(0)).size(), 2000);
    press(view(), u"Load"_s, list().row(0)->buttons()[0]->accessibleDescription());
    EXPECT_EQ(window.run.script(), oneLine.command);
}

TEST_F(HistoryViewTest, ShowsHostileCommandsAndNotesAsTheyAre)
{
    HistoryEntry entry = entryOf(u"<b>rm</b> \u202ecod.exe"_s);
    entry.exitCode.reset();
    entry.machine = u"\u202ebox"_s;
    entry.note = u"<i>note</i>\nwith a second line"_s + QString(100000, u'n');
    window.history.add(entry);
    show();
    const QSize size = window.content().size();
    EXPECT_EQ(rowTexts(0)[0], u"<b>rm</b> ⟨U+202E⟩cod.exe"_s);
    EXPECT_TRUE(rowTexts(0)[1].startsWith(u"⟨U+202E⟩box · <i>note</i> with a second line"_s));
    QTest::qWait(20);
    EXPECT_EQ(window.content().size(), size);
    EXPECT_LE(list().row(0)->buttons().last()->geometry().right(), list().viewport()->width());
}

TEST_F(HistoryViewTest, ShowsTwoEntriesOfTheSameIdentity)
{
    HistoryEntry entry = entryOf(u"first"_s);
    window.history.add(entry);
    entry.command = u"second"_s;
    window.history.add(entry);
    show();
    ASSERT_EQ(list().count(), 2);
    EXPECT_EQ(rowTexts(0)[0], u"second"_s);
    EXPECT_EQ(rowTexts(1)[0], u"first"_s);
    press(view(), u"Load"_s, u"Load first"_s);
    EXPECT_EQ(window.run.script(), u"first"_s);
    window.content().setTab(AppTab::history);
    ASSERT_TRUE(waitUntil([this] { return window.content().findChildren<HistoryView *>().size() == 1; }));
    press(view(), u"Delete"_s, u"Delete first"_s);
    EXPECT_TRUE(window.history.entries().isEmpty());
}

TEST_F(HistoryViewTest, PaintsNothingForASaveThatChangesNothing)
{
    addNumbered(50);
    show();
    EXPECT_TRUE(waitUntil([this] { return window.setup.state() == OrbState::stopped; }));
    list().verticalScrollBar()->setValue(200);
    waitUntilPainted(window.content());
    PaintWatch watch(window.content());
    Q_EMIT window.history.entriesChanged();
    QTest::qWait(50);
    EXPECT_EQ(watch.count(), 0);
    EXPECT_EQ(list().verticalScrollBar()->value(), 200);
}

TEST_F(HistoryViewTest, IsUsableByKeyboardAlone)
{
    addNumbered(50);
    show();
    const auto key = [](Qt::Key which) { QTest::keyClick(QApplication::focusWidget(), which); };
    const auto focused = [] { return ByName::descriptionOf(QApplication::focusWidget()); };
    find<QPushButton>(view(), u"Clear all"_s)->setFocus();
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), u"Load echo 49"_s);
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), u"Delete echo 49"_s);
    key(Qt::Key_Space);
    EXPECT_EQ(window.history.entries().size(), 49);
    EXPECT_EQ(focused(), u"Delete echo 48"_s); // the row that took its place
    key(Qt::Key_End);
    EXPECT_EQ(focused(), u"Delete echo 0"_s);
    key(Qt::Key_Space);
    EXPECT_EQ(focused(), u"Delete echo 1"_s);
    key(Qt::Key_Backtab);
    EXPECT_EQ(focused(), u"Load echo 1"_s);
    key(Qt::Key_Space);
    EXPECT_EQ(window.run.script(), u"echo 1"_s);
    EXPECT_EQ(window.content().tab(), AppTab::run);
}

TEST_F(HistoryViewTest, LeavesTheKeyboardSomewhereUsefulWhenTheLastEntryGoes)
{
    addNumbered(1);
    show();
    list().row(0)->buttons()[1]->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(window.history.entries().isEmpty());
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(ByName::nameOf(QApplication::focusWidget()), u"History"_s) << "the tab";
    addNumbered(2);
    find<QPushButton>(view(), u"Clear all"_s)->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(ByName::nameOf(QApplication::focusWidget()), u"History"_s);
}

TEST_F(HistoryViewTest, DeletesOneRunByTwoQuickClicks)
{
    QApplication::setDoubleClickInterval(5000);
    addNumbered(5);
    show();
    QPushButton *first = list().row(0)->buttons()[1];
    const QPoint place = first->mapToGlobal(first->rect().center());
    QTest::mouseClick(first, Qt::LeftButton);
    EXPECT_EQ(window.history.entries().size(), 4);
    const auto clickThere = [&](QPoint offset) {
        QPushButton *there = list().row(0)->buttons()[1];
        EXPECT_EQ(there->mapToGlobal(there->rect().center()), place);
        QTest::mouseClick(there, Qt::LeftButton, {}, there->rect().center() + offset);
    };
    clickThere({});
    QTest::mouseDClick(list().row(0)->buttons()[1], Qt::LeftButton);
    EXPECT_EQ(window.history.entries().size(), 4);
    clickThere({QApplication::startDragDistance(), 0});
    EXPECT_EQ(window.history.entries().size(), 3) << "the pointer has moved";
    QApplication::setDoubleClickInterval(1);
    EXPECT_TRUE(waitUntil([&] {
        clickThere({QApplication::startDragDistance(), 0});
        return window.history.entries().size() == 2;
    })) << "a moment has passed";
}

TEST_F(HistoryViewTest, LoadsACommandSoThatItCanBeUndone)
{
    window.history.add(entryOf(u"make test"_s));
    window.run.setScript(u"not saved anywhere"_s);
    show();
    press(view(), u"Load"_s, u"Load make test"_s);
    EXPECT_EQ(window.run.script(), u"make test"_s);
    auto *editor = find<QPlainTextEdit>(window.content(), u"Script"_s);
    QTest::keySequence(editor, QKeySequence::Undo);
    EXPECT_EQ(window.run.script(), u"not saved anywhere"_s);
}

TEST_F(HistoryViewTest, LoadsACommandAsItWasAlsoWithLineEndsThatTheEditorHasNot)
{
    const QString command = u"printf 'a\r\nb\u2028c\u00a0'\r"_s;
    window.history.add(entryOf(command));
    show();
    press(view(), u"Load"_s);
    EXPECT_EQ(window.run.script(), command);
}
