// The tool runner's reading of bytes, beside ICU's.

#include "Fuzzing.h"

#include <unicode/unistr.h>

#include <string>

using Fuzzing::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes = Fuzzing::bytes(data, size);
    const icu::StringPiece piece(bytes.data(), static_cast<int>(size));
    const icu::UnicodeString characters = icu::UnicodeString::fromUTF8(piece);
    std::string expected;
    characters.toUTF8String(expected);

    const std::optional<QByteArray> repaired = Utf8Repair::repaired(bytes);
    const QByteArray text = repaired.value_or(bytes.toByteArray());
    require(text.toStdString() == expected, "the text is what ICU makes of the bytes");
    require(repaired.has_value() == (text != bytes), "valid bytes are left as they are");
    require(!Utf8Repair::repaired(text), "what was repaired is valid");

    const QString units = Utf8::toQString(text);
    require(units == QString(reinterpret_cast<const QChar *>(characters.getBuffer()), characters.length()),
            "in UTF-16 it is the same text");
    require(units.toUtf8() == text, "and back again");
    return 0;
}
