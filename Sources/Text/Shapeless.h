#pragma once

namespace Shapeless
{

/// Whether the character has no shape of its own, so that a reader would not see that it is there: controls, direction
/// marks, joiners, fillers, variation selectors, tags, line separators. By Unicode's properties; pure.
bool isShapeless(char32_t character);

/// Asks for the coloured form of the character before it.
inline constexpr char32_t emojiPresentation = 0xfe0f;

} // namespace Shapeless
