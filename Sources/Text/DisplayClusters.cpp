#include "Text/DisplayClusters.h"

#include "Text/GraphemeBreaker.h"
#include "Text/Shapeless.h"
#include "Text/Utf8.h"

#include <unicode/uchar.h>

namespace
{

/// More code points than any honest character has; more are drawn beside, where they cannot cover other lines.
constexpr int mostCodePoints = 32;

bool isBetween(char32_t character, char32_t first, char32_t last)
{
    return character >= first && character <= last;
}

bool isWide(char32_t character)
{
    const int width = u_getIntPropertyValue(static_cast<UChar32>(character), UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH || isBetween(character, 0x1f1e6, 0x1f1ff);
}

bool isSpacingMark(char32_t character)
{
    return u_charType(static_cast<UChar32>(character)) == U_COMBINING_SPACING_MARK;
}

/// Scripts of South and South-East Asia and of Inner Asia whose letters change with their neighbours.
bool isJoinedScript(char32_t character)
{
    return isBetween(character, 0x0900, 0x0dff) || isBetween(character, 0x0f00, 0x109f) ||
           isBetween(character, 0x1700, 0x18af) || isBetween(character, 0x1a20, 0x1cff) ||
           isBetween(character, 0xa800, 0xa8ff) || isBetween(character, 0xa980, 0xaaff) ||
           isBetween(character, 0xabc0, 0xabff) || isBetween(character, 0x11000, 0x11fff);
}

DisplayCluster::Look lookOf(char32_t character)
{
    const UCharDirection direction = u_charDirection(static_cast<UChar32>(character));
    if (direction == U_RIGHT_TO_LEFT || direction == U_RIGHT_TO_LEFT_ARABIC)
        return DisplayCluster::Look::rightToLeft;
    return isJoinedScript(character) ? DisplayCluster::Look::joined : DisplayCluster::Look::glyphs;
}

void makeSymbol(DisplayCluster &cluster)
{
    cluster.look = DisplayCluster::Look::symbol;
    cluster.cells = static_cast<std::int32_t>(outputSymbolName(cluster.first).size());
}

} // namespace

QByteArray outputSymbolName(char32_t character)
{
    constexpr char32_t afterControls = 0x20;
    constexpr char32_t deletion = 0x7f;
    if (character < afterControls || character == deletion)
        return QByteArray("^") + static_cast<char>(character ^ 0x40U);
    return "U+" + QByteArray::number(static_cast<quint32>(character), 16).toUpper().rightJustified(4, '0');
}

bool DisplayClusters::next(DisplayCluster &cluster)
{
    if (m_at >= m_text.size())
        return false;
    cluster = {.begin = static_cast<std::int32_t>(m_at), .size = 1};
    const bool alone = m_at + 1 == m_text.size() || Utf8::isAscii(m_text[m_at + 1]);
    if (alone && Utf8::isAscii(m_text[m_at]))
        readAscii(cluster);
    else
        readAny(cluster);
    m_at = cluster.end();
    return true;
}

void DisplayClusters::readAscii(DisplayCluster &cluster) const
{
    const auto character = static_cast<unsigned char>(m_text[m_at]);
    cluster.first = character;
    if (character >= 0x20U && character != 0x7fU)
        return;
    if (character == '\n' || (character == '\r' && m_at + 1 < m_text.size() && m_text[m_at + 1] == '\n')) {
        cluster.look = DisplayCluster::Look::lineEnd;
        cluster.size = character == '\n' ? 1 : 2;
        cluster.cells = 0;
    } else if (character == '\t') {
        cluster.look = DisplayCluster::Look::tab;
    } else {
        makeSymbol(cluster);
    }
}

void DisplayClusters::readAny(DisplayCluster &cluster) const
{
    qsizetype at = m_at;
    const char32_t first = Utf8::next(m_text, at);
    qsizetype end = at;
    bool wide = isWide(first);
    bool needsTwoCells = false; // a mark beside its letter, or a second letter
    GraphemeBreaker breaker;
    breaker.startsCluster(first);
    for (int count = 1; count < mostCodePoints && at < m_text.size(); ++count) {
        const char32_t character = Utf8::next(m_text, at);
        if (breaker.startsCluster(character))
            break;
        wide = wide || character == Shapeless::emojiPresentation;
        needsTwoCells = needsTwoCells || isSpacingMark(character) || u_isalpha(static_cast<UChar32>(character)) != 0;
        end = at;
    }

    if (end - m_at == 1) {
        readAscii(cluster);
        return;
    }
    cluster.size = static_cast<std::int32_t>(end - m_at);
    cluster.first = first;
    if (Shapeless::isShapeless(first)) {
        makeSymbol(cluster);
        return;
    }
    cluster.look = lookOf(first);
    cluster.cells = wide || (needsTwoCells && cluster.look == DisplayCluster::Look::joined) ? 2 : 1;
}
