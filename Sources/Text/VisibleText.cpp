#include "Text/VisibleText.h"

#include <QList>

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype longestToolTip = 1000;
constexpr qsizetype longestName = 500;

bool isShapeless(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

QString beginningOf(const QString &text, qsizetype length)
{
    const bool halvesPair = length > 0 && text[length - 1].isHighSurrogate() && text[length].isLowSurrogate();
    return text.first(halvesPair ? length - 1 : length);
}

QString endOf(const QString &text, qsizetype length)
{
    const qsizetype start = text.size() - length;
    const bool halvesPair = length > 0 && text[start - 1].isHighSurrogate() && text[start].isLowSurrogate();
    return text.last(halvesPair ? length - 1 : length);
}

} // namespace

QString VisibleText::oneLine(const QString &text)
{
    QString visible;
    visible.reserve(text.size());
    for (const uint unit : text.toUcs4()) {
        const char32_t character = unit;
        if (character == U'\n' || character == U'\r' || character == U'\t')
            visible += u' ';
        else if (isShapeless(character))
            visible += u"\u27e8U+%1\u27e9"_s.arg(QString::number(unit, 16).toUpper(), 4, u'0');
        else
            visible += QChar::fromUcs4(character);
    }
    return visible;
}

QString VisibleText::elidedEnd(const QString &text, qsizetype longest)
{
    return text.size() > longest ? beginningOf(text, longest) + u'…' : text;
}

QString VisibleText::elidedMiddle(const QString &text, qsizetype longest)
{
    return text.size() > longest ? beginningOf(text, longest / 2) + u'…' + endOf(text, longest / 2) : text;
}

QString VisibleText::toolTip(const QString &text)
{
    if (text.isEmpty())
        return {};
    return u"<span>"_s + elidedEnd(text, longestToolTip).toHtmlEscaped() + u"</span>"_s;
}

QString VisibleText::accessibleName(const QString &text)
{
    return elidedEnd(text, longestName);
}
