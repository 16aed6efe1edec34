#include "TidewellApp/Files/FileDialogs.h"

#include "Look/NestedLoops.h"
#include "Text/VisibleText.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

QFileDialog *FileDialogs::make(QWidget &window, const QString &title, QFileDialog::AcceptMode mode)
{
    window.show();
    auto *dialog = new QFileDialog(&window, title);
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog] { NestedLoops::deleteAfter(dialog); });
    dialog->setAcceptMode(mode);
    dialog->setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    return dialog;
}

QString FileDialogs::quotedName(const QString &path)
{
    return u'“' + VisibleText::oneLine(QFileInfo(path).fileName()) + u'”';
}
