#pragma once

// How wide lines of UTF-8 may become in cells of a fixed-width font, quickly: exact for ASCII, where a control
// character is shown in caret notation and takes two cells; two cells for any other code point that might take two.
// Only marks without a shape, which are shown by their numbers, take more.

#include <QByteArrayView>

#include <algorithm>
#include <cstdint>

/// Measures text that arrives in pieces.
class TextMeasure
{
public:
    static constexpr std::int32_t tabWidth = 8;

    explicit TextMeasure(std::int32_t openLine = 0) : m_openLine(openLine) {}

    void add(QByteArrayView text);

    std::int32_t lineFeeds() const { return m_lineFeeds; }
    std::int32_t utf16Length() const { return m_utf16Length; }
    /// The sum of the widths of what was added.
    std::int32_t cells() const { return m_cells; }
    std::int32_t longestEndedLine() const { return m_longestEndedLine; }
    /// The width of the last line so far.
    std::int32_t openLine() const { return m_openLine; }

private:
    void addPlain(QByteArrayView text);
    /// `isEnded`: a line feed comes behind the text.
    void addAny(QByteArrayView text, bool isEnded);
    void addCells(std::int32_t cells)
    {
        m_openLine += cells;
        m_cells += cells;
    }
    void endLine()
    {
        ++m_lineFeeds;
        m_longestEndedLine = std::max(m_longestEndedLine, m_openLine);
        m_openLine = 0;
    }

    std::int32_t m_openLine;
    std::int32_t m_lineFeeds = 0;
    std::int32_t m_utf16Length = 0;
    std::int32_t m_cells = 0;
    std::int32_t m_longestEndedLine = 0;
};
