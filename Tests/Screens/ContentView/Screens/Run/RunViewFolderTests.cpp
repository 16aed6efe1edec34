#include "Screens/ContentView/Screens/Run/RunViewSteps.h"
#include "Screens/Places.h"

#include <QPointer>

#include <functional>

TEST(RunView, SharesAFolderAndGivesItUp)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    const QString folder = window.orbStack.tools().directory(0);
    EXPECT_FALSE(shows(content, folderWarning));
    EXPECT_EQ(find<QAbstractButton>(content, u"Clear"_s, u"Stop sharing the folder"_s), nullptr);
    shareFolder(content, folder);
    EXPECT_TRUE(shows(content, folder));
    EXPECT_TRUE(shows(content, folderWarning));
    EXPECT_EQ(find<PlainLabel>(content, folderWarning)->palette().color(QPalette::WindowText),
              Colours::orange(content.palette()));
    EXPECT_TRUE(runScript(window, u"pwd"_s).contains(u"   (folder: "_s + folder + u")\n"_s + folder + u'\n'));
    press(content, u"Clear"_s, u"Stop sharing the folder"_s);
    EXPECT_FALSE(shows(content, folder));
    EXPECT_FALSE(shows(content, folderWarning));
    window.run.clearTranscript();
    EXPECT_FALSE(runScript(window, u"pwd"_s).contains(u"(folder: "_s));
}

TEST(RunView, KeepsTheFolderWhenTheDialogIsCancelled)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    const QString folder = window.orbStack.tools().directory(0);
    shareFolder(content, folder);
    ASSERT_TRUE(waitUntil([&] { return content.findChild<QFileDialog *>() == nullptr; })) << "the last one is gone";
    QFileDialog *dialog = openFolderDialog(content);
    ASSERT_NE(dialog, nullptr);
    dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(window.orbStack.tools().directory(1));
    press(*dialog, u"Cancel"_s);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(shows(content, folder));
    EXPECT_TRUE(shows(content, folderWarning));
    EXPECT_TRUE(runScript(window, u"pwd"_s).contains(u"\n"_s + folder + u'\n'));
}

TEST(RunView, AsksForOneFolderInADialogThatBlocksNothing)
{
    TestWindow window;
    ContentView &content = window.show();
    find<QAbstractButton>(content, u"Share a folder…"_s)->setFocus();
    QFileDialog *dialog = openFolderDialog(content);
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->windowTitle(), u"Share a folder"_s);
    EXPECT_EQ(dialog->directory(), QDir::home());
    EXPECT_EQ(dialog->fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(dialog->testOption(QFileDialog::ShowDirsOnly));
    EXPECT_EQ(dialog->labelText(QFileDialog::Accept), u"Share"_s);
    EXPECT_EQ(dialog->windowModality(), Qt::WindowModal);
    dialog->reject();
    EXPECT_FALSE(shows(content, folderWarning));
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Share a folder…"_s);
}

TEST(RunView, KeepsTheFolderThatItHasWhenTheDialogIsCancelled)
{
    TestWindow window;
    ContentView &content = window.showRunning({u"box"_s});
    const QString folder = window.orbStack.tools().directory(0);
    const QString another = window.orbStack.tools().directory(1);
    shareFolder(content, folder);
    const auto byButton = [](QFileDialog &dialog) {
        press(dialog, dialog.labelText(QFileDialog::Reject).remove(u'&'));
    };
    const auto byEscape = [](QFileDialog &dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); };
    const auto byClosing = [](QFileDialog &dialog) { dialog.close(); };
    for (const std::function<void(QFileDialog &)> &cancel :
         {std::function(byButton), std::function(byEscape), std::function(byClosing)}) {
        ASSERT_TRUE(waitUntil([&] { return content.findChild<QFileDialog *>() == nullptr; }));
        const QPointer<QFileDialog> dialog = openFolderDialog(content);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->directory(), QDir(folder)) << "it begins where the folder is";
        dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(another);
        cancel(*dialog);
        EXPECT_TRUE(dialog == nullptr || !dialog->isVisible());
        EXPECT_TRUE(shows(content, folder));
        EXPECT_FALSE(shows(content, another));
        EXPECT_TRUE(shows(content, folderWarning));
    }
    EXPECT_TRUE(runScript(window, u"pwd"_s).contains(u"\n"_s + folder + u'\n'));
}

TEST(RunView, ClosesItsFolderDialogAlsoWhileThatSaysThatThereIsNoSuchFolder)
{
    const auto byButton = [](ContentView &, QFileDialog &dialog) { press(dialog, u"Cancel"_s); };
    const auto byLeaving = [](ContentView &content, QFileDialog &) { content.setTab(AppTab::machines); };
    for (const std::function<void(ContentView &, QFileDialog &)> &close :
         {std::function(byButton), std::function(byLeaving)}) {
        TestWindow window;
        ContentView &content = window.show();
        inEventLoop([&] {
            const QPointer<QFileDialog> dialog = openFolderDialog(content);
            ASSERT_NE(dialog, nullptr);
            auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
            name->setText(u"no such folder"_s);
            // Qt's dialog says so in an event loop of its own, and returns when it is answered.
            bool hasSaidSo = false;
            QTimer::singleShot(0, &content, [&] {
                hasSaidSo = alert() != nullptr;
                close(content, *dialog);
            });
            QTest::keyClick(name, Qt::Key_Return);
            EXPECT_TRUE(hasSaidSo);
            EXPECT_TRUE(waitUntil([&] { return dialog == nullptr; }));
            EXPECT_EQ(alert(), nullptr);
        });
    }
}

TEST(RunView, AsksForAFolderOnceHoweverOftenItIsPressed)
{
    TestWindow window;
    ContentView &content = window.show();
    press(content, u"Share a folder…"_s);
    press(content, u"Share a folder…"_s);
    EXPECT_EQ(content.findChildren<QFileDialog *>().size(), 1);
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

TEST(RunView, PutsTheKeyboardOnSharingAfterTheFolderWasChosenOrGivenUp)
{
    TestWindow window;
    ContentView &content = window.show();
    const auto focused = [&content] { return ByName::nameOf(content.focusWidget()); };
    ASSERT_EQ(focused(), u"Script"_s);
    // As assistive technology presses a button: without a focus on it.
    find<QAbstractButton>(content, u"Share a folder…"_s)->click();
    auto *dialog = content.findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    Q_EMIT dialog->fileSelected(window.orbStack.tools().directory(0));
    dialog->reject();
    EXPECT_EQ(focused(), u"Share a folder…"_s);
    auto *clear = find<QAbstractButton>(content, u"Clear"_s, u"Stop sharing the folder"_s);
    ASSERT_NE(clear, nullptr);
    clear->setFocus();
    QTest::keyClick(clear, Qt::Key_Space);
    EXPECT_FALSE(clear->isVisible());
    EXPECT_EQ(focused(), u"Share a folder…"_s);
}

TEST(RunView, LeavesNoRoomForAFolderThatIsNotShared)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's controls keep distances of their own";
#endif
    TestWindow window;
    ContentView &content = window.show();
    const auto gaps = [&content] {
        return Places::gapsBeside(content, {find<QPushButton>(content, u"Share a folder…"_s),
                                            find<QCheckBox>(content, u"10 minute time limit"_s)});
    };
    Places::expectSoon(gaps, QList<int>{12});
    shareFolder(content, window.orbStack.tools().directory(0));
    EXPECT_NE(gaps(), QList<int>{12});
    press(content, u"Clear"_s, u"Stop sharing the folder"_s);
    Places::expectSoon(gaps, QList<int>{12});
}
