#include "RunController/ScriptComposition.h"

#include "Text/WholePattern.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

QString ScriptComposition::shellFor(const QString &distro)
{
    return distro.toLower().contains("alpine"_L1) ? u"sh"_s : u"bash"_s;
}

QString ScriptComposition::quoted(const QString &text)
{
    return u'\'' + QString(text).replace(u'\'', "'\\''"_L1) + u'\'';
}

QString ScriptComposition::compose(const QString &script, const std::optional<QString> &folder)
{
    QString body;
    if (folder) {
        // Machines mount the Mac's files at the same path, or only under /mnt/mac.
        body = u"cd -- "_s + quoted(*folder) + u" 2>/dev/null || cd -- "_s + quoted(u"/mnt/mac"_s + *folder) +
               u" || { echo 'Cannot open the shared folder in the machine' >&2; exit 97; }\n"_s;
    }
    body += script;
    if (!body.endsWith(u'\n'))
        body += u'\n';
    return body;
}

QString ScriptComposition::echoedCommand(const QString &machine, const QString &shell,
                                         const std::optional<QString> &folder)
{
    const QString shared = folder ? u"   (folder: "_s + *folder + u')' : QString();
    return u"$ orb -m "_s + machine + u' ' + shell + u" -s"_s + shared + u'\n';
}

QStringList ScriptComposition::packagesIn(const QString &text)
{
    static const QRegularExpression separators(u"[ ,]"_s);
    return text.split(separators, Qt::SkipEmptyParts);
}

bool ScriptComposition::arePackageNamesValid(const QStringList &packages)
{
    static const WholePattern form(u"[A-Za-z0-9][A-Za-z0-9.+_:=~-]*"_s);
    return !packages.isEmpty() && std::all_of(packages.cbegin(), packages.cend(),
                                              [](const QString &package) { return form.matches(package); });
}
