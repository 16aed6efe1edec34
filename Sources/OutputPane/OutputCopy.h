#pragma once

// Output on its way to the clipboard.

#include "Transcript/TextView.h"

class QWidget;

namespace OutputCopy
{

/// The clipboard holds all of a text at once, in twice its bytes, and the window waits for it to be made: about a
/// second for so much.
constexpr TextView::Position most = TextView::Position{512} * 1024 * 1024;

/// Puts what stands between two positions on the clipboard. More than `bound` bytes are refused, with a notice over the
/// window of `widget`; the clipboard then keeps what it held.
void copy(QWidget *widget, const TextView &text, TextView::Position from, TextView::Position to,
          TextView::Position bound = most);

} // namespace OutputCopy
