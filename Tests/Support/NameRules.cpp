#include "Support/NameRules.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool isLetterOrDigit(QChar character)
{
    return isDigit(character) || (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z');
}

/// A letter or digit first, then these and `others`.
bool isWord(const QString &text, QStringView others)
{
    return !text.isEmpty() && isLetterOrDigit(text[0]) &&
           std::all_of(text.cbegin(), text.cend(),
                       [others](QChar character) { return isLetterOrDigit(character) || others.contains(character); });
}

bool isNumber(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), isDigit);
}

bool isAddress(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(),
                                          [](QChar character) { return isDigit(character) || character == u'.'; });
}

/// "80", "8080:80", "127.0.0.1:8080:80", "127.0.0.1:80"; each may end in "/tcp" or "/udp".
bool isPort(QString text)
{
    if (text.endsWith(u"/tcp"_s) || text.endsWith(u"/udp"_s))
        text.chop(4);
    const QStringList parts = text.split(u':');
    switch (parts.size()) {
    case 1:
        return isNumber(parts[0]);
    case 2:
        return isAddress(parts[0]) && isNumber(parts[1]);
    case 3:
        return isAddress(parts[0]) && isNumber(parts[1]) && isNumber(parts[2]);
    default:
        return false;
    }
}

} // namespace

bool NameRules::isMachineName(const QString &name)
{
    return isWord(name, u"-") && name.size() <= 31 && name == name.toLower();
}

QString NameRules::refusalOfContainer(const QString &image, const QString &name, const QString &ports)
{
    if (!isWord(image.trimmed(), u"._/:@-"))
        return u"Enter a valid image name, for example nginx:latest."_s;
    if (!name.trimmed().isEmpty() && !isWord(name.trimmed(), u"_.-"))
        return u"The container name has characters Docker does not allow."_s;
    const QStringList mappings = pieces(ports);
    if (!std::all_of(mappings.cbegin(), mappings.cend(), isPort))
        return u"Ports look like 8080:80, separated by commas."_s;
    return {};
}

bool NameRules::arePackages(const QString &text)
{
    const QStringList packages = pieces(text);
    return !packages.isEmpty() && std::all_of(packages.cbegin(), packages.cend(),
                                              [](const QString &package) { return isWord(package, u".+_:=~-"); });
}

QStringList NameRules::pieces(const QString &text)
{
    QStringList found;
    QString piece;
    for (const QChar character : text + u' ') {
        if (character != u' ' && character != u',') {
            piece += character;
        } else if (!piece.isEmpty()) {
            found << piece;
            piece.clear();
        }
    }
    return found;
}
