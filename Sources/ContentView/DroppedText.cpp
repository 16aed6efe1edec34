#include "ContentView/DroppedText.h"

#include "RunController/ScriptComposition.h"

#include <QMimeData>
#include <QTextDocumentFragment>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

bool meansItself(QChar character)
{
    return character.isLetterOrNumber() || u"/._-+,:@%="_s.contains(character);
}

/// The path as one word of a shell's line.
QString wordOf(const QUrl &file)
{
    const QString path = file.toLocalFile();
    return std::all_of(path.begin(), path.end(), meansItself) ? path : ScriptComposition::quoted(path);
}

} // namespace

bool DroppedText::isIn(const QMimeData &source)
{
    return source.hasText() || source.hasHtml();
}

QString DroppedText::of(const QMimeData &source)
{
    const QList<QUrl> urls = source.urls();
    if (!urls.isEmpty() && std::all_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); })) {
        QStringList words;
        for (const QUrl &url : urls)
            words.append(wordOf(url));
        return words.join(u' ');
    }
    if (source.hasText())
        return source.text();
    return QTextDocumentFragment::fromHtml(source.html()).toPlainText();
}
