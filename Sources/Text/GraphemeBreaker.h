#pragma once

// Where one user-perceived character (an extended grapheme cluster of Unicode) ends and the next begins, decided one
// code point at a time, so that text may arrive cut anywhere and nothing is ever read twice. CR LF, a letter with its
// accents, a flag made of two letters, Indic consonants written as one and a family of emoji joined together are one
// character each.

#include <cstdint>

class GraphemeBreaker
{
public:
    /// Takes the next code point of the text; true when a new cluster begins with it (always for the first).
    bool startsCluster(char32_t character);

private:
    enum class Emoji : std::uint8_t { none, pictograph, joined };
    enum class Conjunct : std::uint8_t { none, consonant, linked };

    static constexpr int atStart = -1;

    /// Whether a character with this cluster-break property belongs to the cluster of the one before.
    bool joins(int property, bool pictograph) const;
    /// Whether the character completes a conjunct; keeps `m_conjunct` up to date.
    bool completesConjunct(char32_t character, int property);

    /// The cluster-break property of the code point before.
    int m_previous = atStart;
    /// Whether what came before is a pictograph with its extenders, or one followed by a joiner.
    Emoji m_emoji = Emoji::none;
    /// Whether what came before is a consonant of an Indic script, or one with the sign that joins it to the next.
    Conjunct m_conjunct = Conjunct::none;
    /// Whether an odd number of regional indicators came just before: the next one completes a flag.
    bool m_halfFlag = false;
};
