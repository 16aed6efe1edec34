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

#include <cerrno>
#include <unistd.h>

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

TEST_F(ScriptFilesTest, FindsHalfACharacterWhereverItStands)
{
    const QChar first(0xd83d);
    const QChar second(0xdc33);
    const QString whole = QString(first) + second;
    const QString path = tools.orbStack.tools().path(u"halves"_s);
    const auto refusalOfLine = [](int line) {
        return u"Line %1 has half a character, which no file can hold."_s.arg(line);
    };
    for (const QString &text : {QString(first), QString(second), u"a"_s + first, second + u"a"_s, first + u"a"_s,
                                whole + first, whole + second, QString(second) + first, QString(first) + first})
        EXPECT_EQ(ScriptFiles::write(path, text), refusalOfLine(1));
    EXPECT_EQ(ScriptFiles::write(path, u"a\n\n"_s + whole + second), refusalOfLine(3));
    EXPECT_EQ(ScriptFiles::write(path, u"a\n"_s + first + u'\n'), refusalOfLine(2));
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(ScriptFiles::write(path, whole + whole + u'\n' + whole), std::nullopt);
}

TEST_F(ScriptFilesTest, TellsThatAFileCannotBeRead)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"secret"_s);
    ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::WriteOwner));
    ASSERT_TRUE(QFile::setPermissions(folder.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                         QFileDevice::ExeOwner | QFileDevice::ExeGroup |
                                                         QFileDevice::ExeOther));
    constexpr uid_t nobody = 65534; // somebody whom the permissions of files concern
    const bool isRoot = ::geteuid() == 0;
    ASSERT_TRUE(!isRoot || ::seteuid(nobody) == 0);
    const ScriptFiles::Reading reading = ScriptFiles::read(path);
    ASSERT_TRUE(!isRoot || ::seteuid(0) == 0);
    EXPECT_EQ(reading.refusal, u"It cannot be read: "_s + qt_error_string(EACCES) + u'.');
#ifdef Q_OS_LINUX
    // A file whose beginning is nowhere.
    EXPECT_EQ(ScriptFiles::read(u"/proc/self/mem"_s).refusal, u"It cannot be read: "_s + qt_error_string(EIO) + u'.');
#endif
}

TEST_F(ScriptFilesTest, OpenAndSaveInDialogsThatSayWhatTheyAreFor)
{
    trigger(u"Open Script…"_s);
    auto *dialog = window.findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle(), u"Open Script"_s);
    EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(dialog->fileMode(), QFileDialog::ExistingFile);
    delete dialog;
    trigger(u"Save Script As…"_s);
    dialog = window.findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle(), u"Save Script"_s);
    EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(dialog->fileMode(), QFileDialog::AnyFile);
    EXPECT_EQ(dialog->defaultSuffix(), u"sh"_s);
    EXPECT_TRUE(dialog->selectedFiles().value(0).endsWith(u"/script.sh"_s));
    delete dialog;
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
    EXPECT_EQ(ScriptFiles::read(file("one\xef\xb7\x90two")).refusal,
              u"It has line ends that the editor cannot keep (U+FDD0)."_s);
    EXPECT_EQ(ScriptFiles::read(file("one\xef\xb7\x91two")).refusal,
              u"It has line ends that the editor cannot keep (U+FDD1)."_s);
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
    const QString existing = file("before");
    trigger(u"Save Script As…"_s);
    answer(existing);
    EXPECT_FALSE(QFileInfo(existing).isExecutable()) << "as it was before";
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
