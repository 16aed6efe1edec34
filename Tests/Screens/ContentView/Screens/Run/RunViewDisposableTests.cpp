#include "Screens/ContentView/Screens/Run/RunViewSteps.h"

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
