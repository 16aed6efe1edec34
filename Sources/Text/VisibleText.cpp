#include "Text/VisibleText.h"

#include "Text/Shapeless.h"

#include <QList>

#include <unicode/uchar.h>

#include <cstdint>

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype longestToolTip = 1000;
constexpr qsizetype longestName = 500;

constexpr char32_t nonJoiner = 0x200c;
constexpr char32_t joiner = 0x200d;
constexpr char32_t textPresentation = 0xfe0e;
constexpr char32_t keycap = 0x20e3;
constexpr char32_t blackFlag = 0x1f3f4;
constexpr char32_t firstTag = 0xe0020;
constexpr char32_t lastTag = 0xe007f;

bool has(char32_t character, UProperty property)
{
    return u_hasBinaryProperty(static_cast<UChar32>(character), property) != 0;
}

/// A letter of a script whose letters are joined, or a sign that joins the letters around it.
bool isJoined(char32_t character)
{
    constexpr int virama = 9;
    const auto codePoint = static_cast<UChar32>(character);
    const int joining = u_getIntPropertyValue(codePoint, UCHAR_JOINING_TYPE);
    return joining == U_JT_DUAL_JOINING || joining == U_JT_LEFT_JOINING || joining == U_JT_RIGHT_JOINING ||
           u_getCombiningClass(codePoint) == virama;
}

/// Whether the tag is one of those that make the flag of a country's part, Scotland's for one, out of a black flag.
bool isTagOfFlag(const QList<uint> &text, qsizetype at)
{
    constexpr qsizetype tags = 6; // in each such flag
    qsizetype flag = at;
    while (flag > 0 && at - flag < tags && text[flag] != blackFlag)
        --flag;
    if (text[flag] != blackFlag)
        return false;
    QString whole;
    for (const uint character : text.mid(flag, tags + 1))
        whole += QChar::fromUcs4(character);
    return u_stringHasBinaryProperty(QStringView(whole).utf16(), static_cast<std::int32_t>(whole.size()),
                                     UCHAR_RGI_EMOJI_TAG_SEQUENCE) != 0;
}

/// Whether the character without a shape does something to the ones around it that a reader sees: a joiner in a word of
/// a script with joined letters or between two emoji, the presentation of an emoji, the tags of a flag.
bool isSeenAround(const QList<uint> &text, qsizetype at)
{
    const char32_t character = text[at];
    if (character >= firstTag && character <= lastTag)
        return isTagOfFlag(text, at);
    const char32_t next = at + 1 < text.size() ? text[at + 1] : 0;
    // Marks, and an emoji's colours and presentation, stand between it and its letter.
    qsizetype base = at - 1;
    while (base > 0 &&
           u_getIntPropertyValue(static_cast<UChar32>(text[base]), UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_EXTEND &&
           !isJoined(text[base]) && text[base] != nonJoiner)
        --base;
    if (base < 0)
        return false;
    const char32_t before = text[base];
    const bool isEmoji = before > 0x7f && has(before, UCHAR_EMOJI);
    switch (character) {
    case joiner:
        if (isEmoji && has(next, UCHAR_EXTENDED_PICTOGRAPHIC))
            return true;
        [[fallthrough]];
    case nonJoiner:
        return isJoined(before) && u_isalpha(static_cast<UChar32>(next)) != 0 &&
               u_getIntPropertyValue(static_cast<UChar32>(next), UCHAR_SCRIPT) ==
                   u_getIntPropertyValue(static_cast<UChar32>(before), UCHAR_SCRIPT);
    case textPresentation:
    case Shapeless::emojiPresentation:
        return base == at - 1 && (isEmoji || (next == keycap && has(before, UCHAR_EMOJI)));
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
    const QList<uint> characters = text.toUcs4();
    for (qsizetype at = 0; at < characters.size(); ++at) {
        const char32_t character = characters[at];
        if (character == U'\n' || character == U'\r' || character == U'\t')
            visible += u' ';
        else if (Shapeless::isShapeless(character) && !isSeenAround(characters, at))
            visible += u"\u27e8U+%1\u27e9"_s.arg(QString::number(characters[at], 16).toUpper(), 4, u'0');
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

QString VisibleText::windowTitle(const QString &text)
{
    return QString(text).replace("[*]"_L1, "[*][*]"_L1);
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
