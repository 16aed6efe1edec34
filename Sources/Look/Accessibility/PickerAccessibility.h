#pragma once

// What assistive technology sees of a Picker outside macOS: a list of choices whose text is the choice. With Qt's own
// one, a screen reader speaks the label only.

class Picker;

namespace PickerAccessibility
{

/// Makes pickers known to the accessibility interface; any number of calls.
void install();

/// Tells another choice that was made with the keyboard on the closed picker.
void announceChoice(Picker &picker);

} // namespace PickerAccessibility
