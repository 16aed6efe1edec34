// Names and errors made safe to look at.

#include "Fuzzing.h"
#include "Text/VisibleText.h"

using Fuzzing::require;

namespace
{

bool isValid(const QString &text)
{
    return Utf8::toQString(text.toUtf8()) == text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = Fuzzing::text(Fuzzing::bytes(data, size));
    const QString line = VisibleText::oneLine(text);
    for (const QChar character : line) {
        const QChar::Category category = character.category();
        require(category != QChar::Other_Control && category != QChar::Separator_Line &&
                    category != QChar::Separator_Paragraph &&
                    !(character >= QChar(0x202a) && character <= QChar(0x202e)) &&
                    !(character >= QChar(0x2066) && character <= QChar(0x2069)),
                "nothing in the line can act");
    }
    require(isValid(line), "no character is halved");

    const qsizetype longest = size > 0 ? 2 + data[0] % 40 : 2;
    for (const QString &elided : {VisibleText::elidedEnd(text, longest), VisibleText::elidedMiddle(text, longest)}) {
        require(elided.size() <= std::max(longest + 1, qsizetype{3}), "an elided text is as short as was asked");
        require(isValid(elided), "no character is halved by an ellipsis");
        require(text.size() > longest || elided == text, "a short text stays as it is");
    }
    require(VisibleText::accessibleName(text).size() <= 520, "an accessible name is short");
    const QString toolTip = VisibleText::toolTip(text);
    require(toolTip.isEmpty() || toolTip.count(u'<') == 2, "in a tool tip no markup is left but the one around it");
    return 0;
}
