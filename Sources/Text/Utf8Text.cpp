#include "Text/Utf8Text.h"

#include <QStringDecoder>

QString textFromUtf8(QUtf8StringView text)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(QByteArrayView(text.data(), text.size()));
}
