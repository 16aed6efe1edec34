#include "TidewellApp/HelpWindow.h"

#include "Look/Typography.h"

#include <QFile>
#include <QRegularExpression>
#include <QShortcut>
#include <QTextBrowser>
#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace
{

/// What the page says, without its pictures and its links to other files, which are not at hand here.
QString page()
{
    QFile file(u":/README.md"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (!line.startsWith("!["_L1) && !line.startsWith(u'<'))
            text += line + u'\n';
    }
    static const QRegularExpression linkToFile(uR"(\[([^\]]*)\]\((?!https?:)[^)]*\))"_s);
    return text.replace(linkToFile, u"\\1"_s);
}

} // namespace

void HelpWindow::show(QWidget &window)
{
    const auto name = u"Tidewell Help"_s;
    auto *help = window.findChild<QTextBrowser *>(name, Qt::FindDirectChildrenOnly);
    if (help == nullptr) {
        help = new QTextBrowser(&window);
        help->setObjectName(name);
        help->setAccessibleName(name);
        help->setWindowFlag(Qt::Window);
        help->setWindowTitle(name);
        help->setAttribute(Qt::WA_DeleteOnClose);
        help->setOpenExternalLinks(true);
        help->setFont(Typography::body());
        help->document()->setDocumentMargin(16);
        help->document()->setMarkdown(page(), QTextDocument::MarkdownDialectGitHub);
        help->moveCursor(QTextCursor::Start);
        help->resize(680, 720);
        // The menus' own reaches the window that has them; on macOS, where it reaches all, this one is never asked.
        QObject::connect(new QShortcut(QKeySequence::Close, help), &QShortcut::activated, help, &QWidget::close);
    }
    help->show();
    help->raise();
    help->activateWindow();
    // A window that never had the keyboard would leave it with nobody.
    help->setFocus();
}
