#pragma once

// The output pane's fixed-width font: the size of a cell, the glyphs of ASCII by their numbers so that a run of them is
// placed on the grid without shaping, and a bounded memory of the glyphs of all other characters. Main thread only.

#include <QByteArrayView>
#include <QFont>
#include <QGlyphRun>
#include <QHash>
#include <QRawFont>
#include <QTextLayout>

#include <array>
#include <bitset>
#include <chrono>
#include <memory>
#include <utility>

class CellFont
{
public:
    explicit CellFont(const QFont &font);

    const QFont &font() const { return m_font; }
    double cellWidth() const { return m_cellWidth; }
    int rowHeight() const { return m_rowHeight; }
    /// From a row's top to its baseline.
    double ascent() const { return m_ascent; }

    const QRawFont &rawFont() const { return m_rawFont; }
    /// The glyph of a printable ASCII character.
    quint32 glyph(char16_t character) const { return m_glyphs[character - firstAscii]; }

    /// A text shaped by itself, fallback fonts included.
    struct Shaped {
        QList<QGlyphRun> glyphs;
        double width = 0;
        /// From the glyphs' origin to their baseline.
        double ascent = 0;
    };

    /// The glyphs of one character that is not plain ASCII; valid until the next call. Null where its font could not be
    /// opened in time.
    const Shaped *shaped(QByteArrayView character);

    /// Lays out a stretch of joined text in one line; null as above.
    std::unique_ptr<QTextLayout> layout(const QString &text, Qt::LayoutDirection direction) const;

    /// While it lives, the fonts of no other script are opened any more once that took so long in all; a script's first
    /// character opens them. Those of dozens at once, as bytes at random ask for, would hold the window up for a third
    /// of a second.
    class OpeningLimit
    {
    public:
        OpeningLimit(CellFont &font, std::chrono::nanoseconds most) : m_font(font) { font.m_openingTime = most; }
        ~OpeningLimit() { m_font.m_openingTime = unlimited; }
        Q_DISABLE_COPY_MOVE(OpeningLimit)

    private:
        CellFont &m_font;
    };
    /// Whether a font was wanted that could not be opened in time, since this was last asked.
    bool takeMissed() { return std::exchange(m_hasMissed, false); }

private:
    bool areFontsOpen(const QString &text) const;
    std::unique_ptr<QTextLayout> lineOf(const QString &text, Qt::LayoutDirection direction) const;

    static constexpr std::chrono::nanoseconds unlimited = std::chrono::nanoseconds::max();
    static constexpr char16_t firstAscii = 0x20;
    static constexpr char16_t lastAscii = 0x7e;

    QFont m_font;
    QRawFont m_rawFont;
    double m_cellWidth;
    double m_ascent;
    int m_rowHeight;
    std::array<quint32, lastAscii - firstAscii + 1> m_glyphs{};
    QHash<QByteArray, Shaped> m_shaped;
    mutable std::bitset<QChar::ScriptCount> m_openScripts;
    /// What is left for opening fonts.
    mutable std::chrono::nanoseconds m_openingTime = unlimited;
    mutable bool m_hasMissed = false;
};
