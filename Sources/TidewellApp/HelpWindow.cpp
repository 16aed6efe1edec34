#include "TidewellApp/HelpWindow.h"

#include "Look/Colours.h"
#include "Look/Typography.h"

#include <QFile>
#include <QRegularExpression>
#include <QShortcut>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextTable>

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

/// One line between two cells, and room around their texts.
void layOutTables(QTextDocument &document, const QColor &lines)
{
    for (QTextFrame *frame : document.rootFrame()->childFrames()) {
        auto *table = qobject_cast<QTextTable *>(frame);
        if (table == nullptr)
            continue;
        QTextTableFormat format = table->format();
        format.setBorderCollapse(true);
        format.setBorder(1);
        format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setBorderBrush(lines);
        format.setCellSpacing(0);
        format.setCellPadding(5);
        format.setBottomMargin(12);
        table->setFormat(format);
    }
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
        layOutTables(*help->document(), Colours::line(help->palette(), 0.4F));
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
