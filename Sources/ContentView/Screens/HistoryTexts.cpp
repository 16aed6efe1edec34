#include "ContentView/Screens/HistoryTexts.h"

#include <array>
#include <charconv>

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

QString HistoryTexts::duration(double seconds)
{
    // Rounds as printf does, which QString::number does not (0.25), and knows no decimal comma, which printf does.
    std::array<char, 400> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), seconds, std::chars_format::fixed, 1).ptr;
    return QString::fromLatin1(text.data(), end - text.data()) + u's';
}
