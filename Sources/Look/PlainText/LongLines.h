#pragma once

// Lines of any length in a text document. Qt lays out a whole paragraph at every change of it, which for a line of
// megabytes takes seconds; here such a line is a chain of short paragraphs. What parts two of them belongs to neither
// line nor text: it has a format of its own, which goes with it through every change, also one that is undone.

#include <QStringView>

class QTextBlock;
class QTextCursor;
class QTextDocument;

namespace LongLines
{

/// The greatest length of a paragraph that is made here: UTF-16 units.
constexpr qsizetype longestParagraph = 2000;

/// Puts a text in the place of the cursor's selection, as one step that can be undone; the cursor stands at its end.
/// True when a line of it had to become a chain.
bool insert(QTextCursor &cursor, QStringView text);

/// Whether the paragraph goes on with the line of the one before it.
bool continuesLine(const QTextBlock &paragraph);

/// What stands between two positions of a document, with line feeds between its lines.
QString text(const QTextDocument &document, int begin, int end);

} // namespace LongLines
