#include "Text/GraphemeBreaker.h"

#include <unicode/uchar.h>

namespace
{

bool isControl(int property)
{
    return property == U_GCB_CONTROL || property == U_GCB_CR || property == U_GCB_LF;
}

bool isHangulSyllable(int property)
{
    return property == U_GCB_L || property == U_GCB_V || property == U_GCB_T || property == U_GCB_LV ||
           property == U_GCB_LVT;
}

/// True when two jamo or syllables join to one.
bool joinsHangul(int before, int after)
{
    if (!isHangulSyllable(before) || !isHangulSyllable(after))
        return false;
    if (before == U_GCB_L)
        return after != U_GCB_T;
    if (before == U_GCB_V || before == U_GCB_LV)
        return after == U_GCB_V || after == U_GCB_T;
    return after == U_GCB_T;
}

/// True for marks that belong to the cluster before them, whatever it is.
bool alwaysContinues(int property)
{
    return property == U_GCB_EXTEND || property == U_GCB_ZWJ || property == U_GCB_SPACING_MARK;
}

} // namespace

bool GraphemeBreaker::joins(int property, bool pictograph) const
{
    if (isControl(m_previous) || isControl(property))
        return m_previous == U_GCB_CR && property == U_GCB_LF;
    return alwaysContinues(property) || m_previous == U_GCB_PREPEND || (pictograph && m_emoji == Emoji::joined) ||
           (property == U_GCB_REGIONAL_INDICATOR && m_halfFlag) || joinsHangul(m_previous, property);
}

bool GraphemeBreaker::startsCluster(char32_t character)
{
    const auto codePoint = static_cast<UChar32>(character);
    const int property = u_getIntPropertyValue(codePoint, UCHAR_GRAPHEME_CLUSTER_BREAK);
    const bool pictograph = property == U_GCB_OTHER && character >= 0xa9 &&
                            u_hasBinaryProperty(codePoint, UCHAR_EXTENDED_PICTOGRAPHIC) != 0;
    const bool starts = m_previous == atStart || !joins(property, pictograph);

    if (pictograph)
        m_emoji = Emoji::pictograph;
    else if (property == U_GCB_ZWJ && m_emoji == Emoji::pictograph)
        m_emoji = Emoji::joined;
    else if (property != U_GCB_EXTEND || m_emoji == Emoji::joined)
        m_emoji = Emoji::none;
    m_halfFlag = property == U_GCB_REGIONAL_INDICATOR && !m_halfFlag;
    m_previous = property;
    return starts;
}
