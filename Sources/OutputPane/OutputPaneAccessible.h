#pragma once

// The output pane as assistive technology meets it: a read-only text of many lines, read range by range straight from
// the transcript. Offsets are UTF-16 code units from the transcript's first character.

#include "OutputPane/OutputPaneNavigation.h"
#include "OutputPane/Throttle.h"
#include "Transcript/TextView.h"

class OutputPane;

namespace OutputPaneAccessible
{

/// Makes output panes known to the accessibility framework; to be called before one is used, any number of times.
void install();

/// What of a range is handed out at once, when that may be `most` bytes: all of it, or else a stretch of it that lies
/// around `view`, a position on the screen, as far as the range reaches there. Pure.
OutputRange readable(OutputRange range, TextView::Position view, TextView::Position most);

/// The text as it can be handed out, of the same length: on Linux a NUL would end it. Pure.
QString spoken(QString text);

/// Tells assistive technology, if any listens, what changed since it last did: of arriving text at most twice a second,
/// because it looks at the whole text after each time. Main thread.
class Announcer
{
public:
    /// What the pane's text holds already is old news. The pane must outlive it.
    explicit Announcer(OutputPane &pane);

    /// The text grew or lost its front. Of a flood only the last part is read out, in one event.
    void announceText() { m_throttle.request(); }
    /// The caret or the selection moved; told at once, unless the keyboard is elsewhere.
    void announceSelection() const;

private:
    void announceNow();

    OutputPane &m_pane;
    TextView::Position m_begin;
    TextView::Position m_end;
    Throttle m_throttle;
};

} // namespace OutputPaneAccessible
