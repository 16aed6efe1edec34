#pragma once

// Where the caret goes in the output: by characters, words, rows and lines. A caret stands before a position; at a soft
// wrap it may as well stand at the end of the row before.

#include "Look/CellFont.h"
#include "OutputPane/OutputPaneRows.h"

/// A place for the caret.
struct OutputCaret {
    TextView::Position position = 0;
    /// At a soft wrap: at the end of the row before, not at the start of the row that begins here.
    bool endsRow = false;
};

/// A stretch of the text, half open.
struct OutputRange {
    TextView::Position begin = 0;
    TextView::Position end = 0;
};

/// Asked only while there is text. Positions may lie anywhere in it.
class OutputPaneNavigation
{
public:
    using Position = TextView::Position;
    using Row = OutputPaneRows::Row;

    /// Both must outlive the navigation.
    OutputPaneNavigation(OutputPaneRows &rows, const CellFont &font) : m_rows(rows), m_font(font) {}

    /// The row in which the caret is drawn, and where in it, in pixels from its left edge.
    Row rowOf(OutputCaret caret) const;
    double xOf(OutputCaret caret) const;
    /// The place in that row nearest to `x`.
    OutputCaret nearest(const Row &row, double x) const;
    /// The character of that row drawn at `x`, or nearest to it.
    Position positionIn(const Row &row, double x) const;

    /// The place behind the character here, or before the one that ends here; the place itself at the text's ends.
    Position nextCharacter(Position position) const;
    Position previousCharacter(Position position) const;
    /// The start of the word after.
    Position nextWord(Position position) const;
    /// The start of this word, or of the one before.
    Position previousWord(Position position) const;
    /// The ends of the row in which the caret is drawn, without its line end.
    OutputCaret rowBegin(OutputCaret caret) const;
    OutputCaret rowEnd(OutputCaret caret) const;
    /// Behind the line's last character, before its line end.
    OutputCaret lineEnd(Position position) const;

    /// The run of letters and digits, of blanks or of other signs around a position; empty at a line end.
    OutputRange wordAt(Position position) const;
    /// The row, with its line end if it has one.
    OutputRange rowAt(Position position) const;
    /// The line with its line end.
    OutputRange lineAt(Position position) const;

private:
    OutputPaneRow layOut(const Row &row) const { return m_rows.layOut(row, m_font); }
    OutputCaret caretIn(const Row &row, qint64 byte) const;

    OutputPaneRows &m_rows;
    const CellFont &m_font;
};
