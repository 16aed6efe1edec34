#include "Text/VisibleText.h"

#include <QList>

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype longestToolTip = 1000;

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

QString VisibleText::toolTip(const QString &text)
{
    if (text.isEmpty())
        return {};
    const QString shown = text.size() > longestToolTip ? text.first(longestToolTip) + u'…' : text;
    return u"<span>"_s + shown.toHtmlEscaped() + u"</span>"_s;
}
