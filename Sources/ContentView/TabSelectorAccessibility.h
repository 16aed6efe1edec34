#pragma once

// What assistive technology sees of a TabSelector: a list of tabs and nothing else in it.

namespace TabSelectorAccessibility
{

/// Makes tab selectors known to the accessibility interface; any number of calls.
void install();

} // namespace TabSelectorAccessibility
