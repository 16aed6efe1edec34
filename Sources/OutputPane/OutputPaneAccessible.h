#pragma once

// The output pane as assistive technology meets it: a read-only text of many lines, read range by range straight from
// the transcript. Offsets are UTF-16 code units from the transcript's first character.

#include "Transcript/TextStore.h"

class OutputPane;

namespace OutputPaneAccessible
{

/// Makes output panes known to the accessibility framework; to be called before one is used, any number of times.
void install();

/// Tells assistive technology, if any listens, what changed since it last did.
class Announcer
{
public:
    /// What `text` holds already is old news.
    explicit Announcer(const TextStore &text) : m_begin(text.begin()), m_end(text.end()) {}

    /// The text grew or lost its front. Of a flood only the last part is read out, in one event.
    void announceText(OutputPane &pane);
    /// The caret or the selection moved.
    void announceSelection(OutputPane &pane) const;

private:
    TextStore::Position m_begin;
    TextStore::Position m_end;
};

} // namespace OutputPaneAccessible
