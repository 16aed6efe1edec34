#include "Text/Shapeless.h"

#include <unicode/uchar.h>

bool Shapeless::isShapeless(char32_t character)
{
    const auto codePoint = static_cast<UChar32>(character);
    switch (u_charType(codePoint)) {
    case U_CONTROL_CHAR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
        return true;
    default:
        // The marks of annotations are meant for programs, but are not among the ignorable ones.
        return (character >= 0xfff9 && character <= 0xfffb) ||
               u_hasBinaryProperty(codePoint, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
    }
}
