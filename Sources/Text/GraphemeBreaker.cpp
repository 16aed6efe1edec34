#include "Text/GraphemeBreaker.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/uvernum.h>

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

enum class ConjunctPart : std::uint8_t { none, consonant, linker, extender };

/// What the character is to a conjunct: Unicode's property Indic_Conjunct_Break.
ConjunctPart conjunctPartOf(UChar32 character, int property)
{
#if U_ICU_VERSION_MAJOR_NUM >= 76
    static_cast<void>(property);
    switch (u_getIntPropertyValue(character, UCHAR_INDIC_CONJUNCT_BREAK)) {
    case U_INCB_CONSONANT:
        return ConjunctPart::consonant;
    case U_INCB_LINKER:
        return ConjunctPart::linker;
    case U_INCB_EXTEND:
        return ConjunctPart::extender;
    default:
        return ConjunctPart::none;
    }
#else
    // The library does not tell yet: from the properties of which that one is made.
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(character, &status);
    const int kind = u_getIntPropertyValue(character, UCHAR_INDIC_SYLLABIC_CATEGORY);
    const bool joins = script == USCRIPT_BENGALI || script == USCRIPT_DEVANAGARI || script == USCRIPT_GUJARATI ||
                       script == USCRIPT_MALAYALAM || script == USCRIPT_ORIYA || script == USCRIPT_TELUGU;
    if (joins && kind == U_INSC_CONSONANT)
        return ConjunctPart::consonant;
    if (joins && kind == U_INSC_VIRAMA)
        return ConjunctPart::linker;
    const bool extends = property == U_GCB_ZWJ || (property == U_GCB_EXTEND && u_getCombiningClass(character) != 0);
    return extends ? ConjunctPart::extender : ConjunctPart::none;
#endif
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
    const bool conjunct = completesConjunct(character, property);
    const bool starts = m_previous == atStart || !(conjunct || joins(property, pictograph));

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

bool GraphemeBreaker::completesConjunct(char32_t character, int property)
{
    // Most text is of other scripts, for which nothing needs to be looked up.
    constexpr char32_t firstIndic = 0x0900;
    if (m_conjunct == Conjunct::none && (character < firstIndic || property != U_GCB_OTHER))
        return false;
    const ConjunctPart part = conjunctPartOf(static_cast<UChar32>(character), property);
    const bool completes = part == ConjunctPart::consonant && m_conjunct == Conjunct::linked;
    if (part == ConjunctPart::consonant)
        m_conjunct = Conjunct::consonant;
    else if (part == ConjunctPart::none)
        m_conjunct = Conjunct::none;
    else if (part == ConjunctPart::linker && m_conjunct == Conjunct::consonant)
        m_conjunct = Conjunct::linked;
    return completes;
}
