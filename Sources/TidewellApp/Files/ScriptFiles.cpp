#include "TidewellApp/Files/ScriptFiles.h"

#include "Text/Utf8Repair.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace
{

const auto byteOrderMark = QByteArrayLiteral("\xef\xbb\xbf");

/// A line end that the editor does not know as one or turns into another; 0 when there is none.
char16_t foreignLineEnd(const QString &text)
{
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'\r':
        case QChar::LineSeparator:
        case QChar::ParagraphSeparator:
        case 0xfdd0: // a document's own marks
        case 0xfdd1:
            return character.unicode();
        default:
            break;
        }
    }
    return 0;
}

/// The line, from 1 on, with a surrogate that is not one of a pair; 0 when there is none.
qsizetype lineWithHalfCharacter(const QString &text)
{
    for (qsizetype index = 0; index < text.size(); ++index) {
        if (!text[index].isSurrogate())
            continue;
        const bool isPair =
            text[index].isHighSurrogate() && index + 1 < text.size() && text[index + 1].isLowSurrogate();
        if (!isPair)
            return QStringView(text).first(index).count(u'\n') + 1;
        ++index;
    }
    return 0;
}

} // namespace

ScriptFiles::Reading ScriptFiles::read(const QString &path)
{
    const auto refused = [](const QString &reason) { return Reading{{}, std::nullopt, reason}; };
    QFile file(path);
    if (!QFileInfo(path).isFile())
        return refused(u"It is not a file."_s);
    if (!file.open(QIODevice::ReadOnly))
        return refused(u"It cannot be read: "_s + file.errorString() + u'.');
    const QByteArray bytes = file.read(largestScript + 1);
    if (file.error() != QFileDevice::NoError)
        return refused(u"It cannot be read: "_s + file.errorString() + u'.');
    if (bytes.size() > largestScript)
        return refused(u"It is larger than 5 MB."_s);
    if (Utf8Repair::repaired(bytes) || bytes.contains('\0'))
        return refused(u"It is not a text in UTF-8."_s);
    QString text = QString::fromUtf8(bytes); // without a byte order mark
    text.replace("\r\n"_L1, "\n"_L1);
    if (const char16_t lineEnd = foreignLineEnd(text))
        return refused(u"It has line ends that the editor cannot keep (U+%1)."_s.arg(
            QString::number(lineEnd, 16).toUpper(), 4, u'0'));
    QStringList changes;
    if (bytes.startsWith(byteOrderMark))
        changes.append(u"Its byte order mark was left out."_s);
    if (bytes.contains("\r\n"))
        changes.append(u"Its line ends were those of Windows, and are now those of Linux."_s);
    return {text, changes.isEmpty() ? std::nullopt : std::optional(changes.join(u' ')), std::nullopt};
}

std::optional<QString> ScriptFiles::write(const QString &path, const QString &text)
{
    if (const qsizetype line = lineWithHalfCharacter(text))
        return u"Line %1 has half a character, which no file can hold."_s.arg(line);
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
