#include "Screens/TestWindow.h"
#include "TidewellApp/Files/ScriptFiles.h"
#include "TidewellApp/MainWindow.h"

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace
{

class ScriptFilesTest : public testing::Test
{
protected:
    ScriptFilesTest() { window.show(); }

    QString file(const QByteArray &content) { return tools.orbStack.tools().addFile(u"script.sh"_s, content); }

    void trigger(const QString &label)
    {
        for (QAction *each : window.findChildren<QAction *>()) {
            if (each->text().remove(u'&') == label)
                each->trigger();
        }
    }

    /// Answers the file dialog that is open with a path.
    void answer(const QString &path)
    {
        auto *dialog = window.findChild<QFileDialog *>();
        ASSERT_NE(dialog, nullptr);
        EXPECT_TRUE(dialog->isVisible());
        Q_EMIT dialog->fileSelected(path);
        delete dialog;
    }

    QString alertText() const
    {
        const auto *alert = window.findChild<QMessageBox *>();
        return alert == nullptr ? QString() : alert->text() + u' ' + alert->informativeText();
    }

    TestWindow tools;
    MainWindow window{tools.controllers()};
};

} // namespace

TEST_F(ScriptFilesTest, AnOpenedFileStandsInTheEditorAndCanBeUndone)
{
    tools.run.setScript(u"before"_s);
    window.content().setTab(AppTab::history);
    trigger(u"Open Script…"_s);
    answer(file("echo one\r\necho two\n"));
    EXPECT_EQ(window.content().tab(), AppTab::run);
    EXPECT_EQ(tools.run.script(), u"echo one\necho two\n"_s);
    ByName::find<QPlainTextEdit>(window, u"Script"_s)->undo();
    EXPECT_EQ(tools.run.script(), u"before"_s);
}

TEST_F(ScriptFilesTest, WhatIsNoTextIsRefusedWithASentenceAndTheScriptStays)
{
    tools.run.setScript(u"before"_s);
    trigger(u"Open Script…"_s);
    answer(file("half a \xc3"));
    EXPECT_EQ(alertText(), u"“script.sh” was not opened. It is not a text in UTF-8."_s);
    EXPECT_EQ(tools.run.script(), u"before"_s);
}

TEST_F(ScriptFilesTest, TellsWhyAFileIsNotRead)
{
    EXPECT_EQ(ScriptFiles::read(file(QByteArray(5'000'001, 'x'))).refusal, u"It is larger than 5 MB."_s);
    EXPECT_EQ(ScriptFiles::read(file(QByteArray(5'000'000, 'x'))).refusal, std::nullopt);
    EXPECT_EQ(ScriptFiles::read(file(QByteArray("a\0b", 3))).refusal, u"It is not a text in UTF-8."_s);
    EXPECT_EQ(ScriptFiles::read(tools.orbStack.tools().path(u"."_s)).refusal, u"It is not a file."_s);
    EXPECT_EQ(ScriptFiles::read(u"/dev/zero"_s).refusal, u"It is not a file."_s) << "and it is not read without end";
    EXPECT_EQ(ScriptFiles::read(tools.orbStack.tools().path(u"missing"_s)).refusal, u"It is not a file."_s);
}

TEST_F(ScriptFilesTest, SavesNoHalfOfACharacter)
{
    const QString path = file("as it was");
    tools.run.setScript(u"echo 🐳\necho "_s + QChar(0xd83d) + u"\n"_s);
    trigger(u"Save Script As…"_s);
    answer(path);
    EXPECT_EQ(alertText(), u"“script.sh” was not saved. Line 2 has half a character, which no file can hold."_s);
    EXPECT_EQ(ScriptFiles::read(path).text, u"as it was"_s);
    EXPECT_TRUE(ScriptFiles::write(path, QString(QChar(0xdc33)) + QChar(0xd83d)));
    EXPECT_EQ(ScriptFiles::write(path, u"🐳\n"_s), std::nullopt);
}

TEST_F(ScriptFilesTest, TellsWhatOfAnOpenedFileIsNotInTheEditor)
{
    trigger(u"Open Script…"_s);
    answer(file("\xef\xbb\xbf"
                "echo one\r\n"));
    EXPECT_EQ(tools.run.script(), u"echo one\n"_s);
    EXPECT_EQ(alertText(),
              u"“script.sh” was opened with a change. Its byte order mark was left out. Its line ends were "
              "those of Windows, and are now those of Linux."_s);
    EXPECT_EQ(ScriptFiles::read(file("echo one\n")).change, std::nullopt);
}

TEST_F(ScriptFilesTest, OpensNoFileWithLineEndsThatTheEditorWouldChange)
{
    EXPECT_EQ(ScriptFiles::read(file("one\rtwo\n")).refusal,
              u"It has line ends that the editor cannot keep (U+000D)."_s);
    EXPECT_EQ(ScriptFiles::read(file("one\xe2\x80\xa8two")).refusal,
              u"It has line ends that the editor cannot keep (U+2028)."_s);
    EXPECT_EQ(ScriptFiles::read(file("one\xe2\x80\xa9two")).refusal,
              u"It has line ends that the editor cannot keep (U+2029)."_s);
}

TEST_F(ScriptFilesTest, SavesTheScriptAsUtf8ThatItsOwnerMayExecute)
{
    tools.run.setScript(u"echo \u00e9\n"_s);
    const QString path = tools.orbStack.tools().path(u"saved.sh"_s);
    trigger(u"Save Script As…"_s);
    answer(path);
    QFile saved(path);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(saved.readAll(), QByteArray("echo \xc3\xa9\n"));
    EXPECT_TRUE(QFileInfo(path).isExecutable());
}

TEST_F(ScriptFilesTest, SayWhenAScriptCannotBeSavedAndLeaveTheOldFile)
{
    const QString path = tools.orbStack.tools().path(u"no such folder/x.sh"_s);
    trigger(u"Save Script As…"_s);
    answer(path);
    EXPECT_TRUE(alertText().startsWith(u"“x.sh” was not saved. It cannot be written: "_s)) << alertText().toStdString();
}

TEST_F(ScriptFilesTest, AskOverTheWindowThoughItWasHidden)
{
    for (const QString &label : {u"Open Script…"_s, u"Save Script As…"_s}) {
        window.hide();
        trigger(label);
        EXPECT_TRUE(window.isVisible());
        delete window.findChild<QFileDialog *>();
    }
}

TEST_F(ScriptFilesTest, CloseTheirDialogAlsoWhileThatAsksSomethingItself)
{
    const QString existing = file("before");
    for (const auto &[label, path] :
         {std::pair(u"Open Script…"_s, existing + u".missing"_s), std::pair(u"Save Script As…"_s, existing)}) {
        inEventLoop([&] {
            trigger(label);
            const QPointer<QFileDialog> dialog = window.findChild<QFileDialog *>();
            ASSERT_NE(dialog, nullptr);
            auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
            name->setText(path);
            bool hasAsked = false;
            QTimer::singleShot(0, &window, [&] {
                hasAsked = dialog->findChild<QMessageBox *>() != nullptr;
                dialog->reject();
            });
            QTest::keyClick(name, Qt::Key_Return);
            EXPECT_TRUE(hasAsked) << label.toStdString();
            EXPECT_TRUE(waitUntil([&] { return dialog == nullptr; }));
        });
    }
    QFile left(existing);
    EXPECT_TRUE(left.open(QIODevice::ReadOnly));
    EXPECT_EQ(left.readAll(), "before") << "nobody said that it may be replaced";
}
