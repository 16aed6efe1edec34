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
#include <memory>

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

    /// The glyphs of one character that is not plain ASCII; valid until the next call.
    const Shaped &shaped(QByteArrayView character);

    /// Lays out a stretch of joined text in one line.
    std::unique_ptr<QTextLayout> layout(const QString &text, Qt::LayoutDirection direction) const;

private:
    static constexpr char16_t firstAscii = 0x20;
    static constexpr char16_t lastAscii = 0x7e;

    QFont m_font;
    QRawFont m_rawFont;
    double m_cellWidth;
    double m_ascent;
    int m_rowHeight;
    std::array<quint32, lastAscii - firstAscii + 1> m_glyphs{};
    QHash<QByteArray, Shaped> m_shaped;
};
