/** Order and shapes of characters where texts run from right to left. */
#pragma once

#include "vrel_kestrin_flow.h"

#include <cstddef>
#include <vector>

namespace zelxxx {

/** Stands in for the second character of a ligature, which the first one draws. */
constexpr UInt32 kLigatureFill = 0xfeff;

/** FriBidi's class of what has no direction of its own. */
extern const UInt32 kNeutralType;

/**
 * The characters of a text, in logical order, with what bidirectional display makes of them. All
 * vectors have an element for each character; paragraphs are resolved one by one.
 */
struct FlowOrder
{
    explicit FlowOrder(const std::vector<UInt32>& text);

    /**
     * Resolves the characters begin <= i < end, one paragraph with the separator that ends it.
     *
     * @return whether the paragraph runs from right to left
     */
    bool Resolve(std::size_t begin, std::size_t end, FlowDirection direction);

    const std::vector<UInt32>& characters;
    std::vector<UInt32> types; /**< FriBidi's classes */
    std::vector<signed char> levels;
    /** What to draw: mirrored, and joined by presentation forms, but each for itself. */
    std::vector<UInt32> shapes;
    /** The same with ligatures of two characters, the second of which is kLigatureFill. */
    std::vector<UInt32> ligatures;
    std::vector<bool> joined; /**< to the character that follows */
};

/**
 * Visual order of one line, from left to right, as indices into it. Marks follow the characters
 * they stand on, also from right to left.
 *
 * @param types   FriBidi's classes of the line's characters
 * @param levels  their levels; blanks at the line's end are reset
 */
std::vector<int> VisualOrder(const std::vector<UInt32>& types, std::vector<signed char>& levels,
                             bool right_to_left);

} // namespace zelxxx
