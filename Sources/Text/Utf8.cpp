#include "Text/Utf8.h"

#include <QStringDecoder>

QString Utf8::toQString(QUtf8StringView text)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(QByteArrayView(text.data(), text.size()));
}
