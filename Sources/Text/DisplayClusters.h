#pragma once

// Reads text as the output pane shows it: one user-perceived character at a time, each with the number of cells it
// takes in a grid of fixed width and the way it is drawn. Nothing in the text can command anything: control characters,
// escape codes and marks without a shape are shown by name.

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>

struct DisplayCluster {
    enum class Look : std::uint8_t {
        plain,       ///< printable ASCII
        symbol,      ///< a character that must not act or has no shape; its name is shown
        tab,         ///< blank up to the next multiple of eight
        lineEnd,     ///< LF or CR LF; takes no cell
        glyphs,      ///< any other character, drawn alone in its cells
        joined,      ///< a character whose script joins it with its neighbours, left to right
        rightToLeft, ///< the same, right to left
    };

    /// Bytes from the start of the text that is read.
    std::int32_t begin = 0;
    std::int32_t size = 0;
    /// The column of its first cell within its row; whoever lays out the row sets it.
    std::int32_t column = 0;
    /// 0 to 2; for a symbol the length of its name, for a tab up to 8 once its column is known.
    std::int32_t cells = 1;
    /// The first code point.
    char32_t first = 0;
    Look look = Look::plain;

    std::int32_t end() const { return begin + size; }
};

/// The name that a symbol is shown by: "^[" for escape, "U+202E" for a direction mark. Always ASCII.
QByteArray outputSymbolName(char32_t character);

class DisplayClusters
{
public:
    /// Reads valid UTF-8 from `at`, the start of a cluster.
    explicit DisplayClusters(QByteArrayView text, qsizetype at = 0) : m_text(text), m_at(at) {}

    /// Reads the next cluster; false at the end. A cluster of very many code points is read as several.
    bool next(DisplayCluster &cluster);

private:
    void readAscii(DisplayCluster &cluster) const;
    void readAny(DisplayCluster &cluster) const;

    QByteArrayView m_text;
    qsizetype m_at;
};
