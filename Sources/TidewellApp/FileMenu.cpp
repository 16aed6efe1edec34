#include "TidewellApp/FileMenu.h"

#include "ContentView/ContentView.h"
#include "Look/Alert.h"
#include "RunController/RunController.h"
#include "Text/VisibleText.h"
#include "TidewellApp/ScriptFiles.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace
{

QString nameOf(const QString &path)
{
    return VisibleText::oneLine(QFileInfo(path).fileName());
}

/// A file dialog over the window that is gone once it was answered. On macOS the window may be hidden, with nothing to
/// hold the dialog or to show what came of it.
QFileDialog *askForFile(QWidget &window, const QString &title, QFileDialog::AcceptMode mode)
{
    window.show();
    auto *dialog = new QFileDialog(&window, title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(mode);
    dialog->setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    return dialog;
}

void openScript(QMainWindow &window, ContentView &content)
{
    QFileDialog *dialog = askForFile(window, u"Open Script"_s, QFileDialog::AcceptOpen);
    QObject::connect(dialog, &QFileDialog::fileSelected, &content, [&window, &content](const QString &path) {
        const ScriptFiles::Reading reading = ScriptFiles::read(path);
        if (reading.refusal) {
            Alert::tell(&window, u"“"_s + nameOf(path) + u"” was not opened."_s, *reading.refusal);
            return;
        }
        content.replaceScript(reading.text);
        if (reading.change)
            Alert::tell(&window, u"“"_s + nameOf(path) + u"” was opened with a change."_s, *reading.change);
    });
    dialog->open();
}

void saveScript(QMainWindow &window, RunController &run)
{
    QFileDialog *dialog = askForFile(window, u"Save Script"_s, QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"sh"_s);
    dialog->selectFile(u"script.sh"_s);
    QObject::connect(dialog, &QFileDialog::fileSelected, &run, [&window, &run](const QString &path) {
        if (const std::optional<QString> failure = ScriptFiles::write(path, run.script()))
            Alert::tell(&window, u"“"_s + nameOf(path) + u"” was not saved."_s, *failure);
    });
    dialog->open();
}

} // namespace

void FileMenu::add(QMainWindow &window, ContentView &content, RunController &run)
{
    QMenu *file = window.menuBar()->addMenu(u"&File"_s);
    QAction *open = file->addAction(u"&Open Script…"_s, &window, [&window, &content] { openScript(window, content); });
    open->setShortcut(QKeySequence::Open);
    QAction *save = file->addAction(u"&Save Script As…"_s, &window, [&window, &run] { saveScript(window, run); });
    save->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_S);
    file->addSeparator();
    // On macOS the menus are those of whatever window is in front.
    QAction *close = file->addAction(u"&Close Window"_s, &window, [&window] {
        QWidget *front = QApplication::activeWindow();
        (front != nullptr ? front : &window)->close();
    });
    close->setShortcut(QKeySequence::Close);
    QAction *quit = file->addAction(u"&Quit Tidewell"_s, qApp, &QApplication::quit);
    quit->setMenuRole(QAction::QuitRole);
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
}
