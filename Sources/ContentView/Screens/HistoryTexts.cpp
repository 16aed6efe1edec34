#include "ContentView/Screens/HistoryTexts.h"

using namespace Qt::StringLiterals;

QString HistoryTexts::statusText(const HistoryEntry &entry)
{
    if (entry.exitCode)
        return u"exit "_s + QString::number(*entry.exitCode);
    return entry.note.isEmpty() ? u"no exit status"_s : entry.note;
}

QString HistoryTexts::firstLine(const QString &command)
{
    for (const QStringView line : QStringView(command).tokenize(u'\n', Qt::SkipEmptyParts))
        return line.toString();
    return command;
}
