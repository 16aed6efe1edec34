#include "TidewellApp/Menus/FileMenu.h"

#include "ContentView/ContentView.h"
#include "Look/Alert.h"
#include "RunController/RunController.h"
#include "TidewellApp/Files/FileDialogs.h"
#include "TidewellApp/Files/ScriptFiles.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace
{

void openScript(QMainWindow &window, ContentView &content)
{
    QFileDialog *dialog = FileDialogs::make(window, u"Open Script"_s, QFileDialog::AcceptOpen);
    QObject::connect(dialog, &QFileDialog::fileSelected, &content, [&window, &content](const QString &path) {
        const ScriptFiles::Reading reading = ScriptFiles::read(path);
        if (reading.refusal) {
            Alert::tell(&window, FileDialogs::quotedName(path) + u" was not opened."_s, *reading.refusal);
            return;
        }
        content.replaceScript(reading.text);
        if (reading.change)
            Alert::tell(&window, FileDialogs::quotedName(path) + u" was opened with a change."_s, *reading.change);
    });
    dialog->open();
}

void saveScript(QMainWindow &window, RunController &run)
{
    QFileDialog *dialog = FileDialogs::make(window, u"Save Script"_s, QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"sh"_s);
    dialog->selectFile(u"script.sh"_s);
    QObject::connect(dialog, &QFileDialog::fileSelected, &run, [&window, &run](const QString &path) {
        if (const std::optional<QString> failure = ScriptFiles::write(path, run.script()))
            Alert::tell(&window, FileDialogs::quotedName(path) + u" was not saved."_s, *failure);
    });
    dialog->open();
}

} // namespace

void FileMenu::add(QMainWindow &window, ContentView &content, RunController &run, QAction *saveOutput)
{
    QMenu *file = window.menuBar()->addMenu(u"&File"_s);
    QAction *open = file->addAction(u"&Open Script…"_s, &window, [&window, &content] { openScript(window, content); });
    open->setShortcut(QKeySequence::Open);
    QAction *save = file->addAction(u"&Save Script As…"_s, &window, [&window, &run] { saveScript(window, run); });
    save->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_S);
    file->addAction(saveOutput);
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
