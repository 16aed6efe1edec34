#include "Support/RecordingTools.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace
{

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

RecordedCall recordedCall(const QStringList &arguments, const QByteArray &input)
{
    RecordedCall call{{}, input};
    for (const QString &argument : arguments)
        call.arguments << argument.toUtf8();
    return call;
}

void PrintTo(const RecordedCall &call, std::ostream *out)
{
    for (const QByteArray &argument : call.arguments)
        *out << '<' << argument.toPercentEncoding(" /:-").toStdString() << '>';
    *out << " reads \"" << call.input.toPercentEncoding(" /:-'").toStdString() << '"';
}

RecordingTools::RecordingTools(const QString &body)
{
    addFile(u"count"_s, "0\n");
    const QString keep = u"read -r count < '%1/count'; count=$((count + 1)); echo $count > '%1/count'\n"
                         u"printf '%s\\0' \"${0##*/}\" \"$@\" > '%1/arguments.'$count; cat > '%1/input.'$count\n"_s;
    for (const QString &tool : {u"orb"_s, u"docker"_s, u"brew"_s})
        addTool(tool, keep.arg(path(QString())) + body);
}

QList<RecordedCall> RecordingTools::take()
{
    QList<RecordedCall> calls;
    const int count = contentOf(path(u"count"_s)).trimmed().toInt();
    for (int number = 1; number <= count; ++number) {
        const QString suffix = u'.' + QString::number(number);
        QByteArrayList arguments = contentOf(path(u"arguments"_s + suffix)).split('\0');
        arguments.removeLast(); // behind the last NUL
        calls << RecordedCall{arguments, contentOf(path(u"input"_s + suffix))};
    }
    addFile(u"count"_s, "0\n");
    return calls;
}
