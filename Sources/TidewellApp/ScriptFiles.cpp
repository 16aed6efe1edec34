#include "TidewellApp/ScriptFiles.h"

#include "Text/Utf8Repair.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

using namespace Qt::StringLiterals;

ScriptFiles::Reading ScriptFiles::read(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile())
        return {{}, u"It is not a file."_s};
    if (!file.open(QIODevice::ReadOnly))
        return {{}, u"It cannot be read: "_s + file.errorString() + u'.'};
    const QByteArray bytes = file.read(largestScript + 1);
    if (file.error() != QFileDevice::NoError)
        return {{}, u"It cannot be read: "_s + file.errorString() + u'.'};
    if (bytes.size() > largestScript)
        return {{}, u"It is larger than 5 MB."_s};
    if (Utf8Repair::repaired(bytes) || bytes.contains('\0'))
        return {{}, u"It is not a text in UTF-8."_s};
    QString text = QString::fromUtf8(bytes);
    text.replace("\r\n"_L1, "\n"_L1);
    return {text, std::nullopt};
}

std::optional<QString> ScriptFiles::write(const QString &path, const QString &text)
{
    const bool isNew = !QFileInfo::exists(path);
    QSaveFile file(path);
    const QByteArray bytes = text.toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return u"It cannot be written: "_s + file.errorString() + u'.';
    if (isNew)
        file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
    if (!file.commit())
        return u"It cannot be written: "_s + file.errorString() + u'.';
    return std::nullopt;
}
