#include "flow_breaks_p.h"

#include <unicode/ubrk.h>

#include <algorithm>

namespace zelxxx {

namespace {

/** From here on there are marks, and other characters that go with the one before. */
constexpr WChar kFirstMark = 0x300;

constexpr WChar kCarriageReturn = 0x0d;
constexpr WChar kLineFeed = 0x0a;

/** The root locale's rules, which are Unicode's own. Null without the library's data. */
UBreakIterator* Open(bool characters)
{
    UErrorCode error = U_ZERO_ERROR;
    UBreakIterator* iterator =
        ubrk_open(characters ? UBRK_CHARACTER : UBRK_LINE, "", nullptr, 0, &error);
    return U_SUCCESS(error) ? iterator : nullptr;
}

} // namespace

FlowBreaker::FlowBreaker() = default;
FlowBreaker::~FlowBreaker() = default;

void FlowBreaker::Closer::operator()(UBreakIterator* iterator) const
{
    ubrk_close(iterator);
}

void FlowBreaker::Mark(Iterator& iterator, bool characters, PtrConstWChar units, UInt32 length,
                       UInt8 boundary, std::vector<UInt8>& boundaries)
{
    if (!iterator)
        iterator.reset(Open(characters));
    UErrorCode error = U_ZERO_ERROR;
    if (iterator)
        ubrk_setText(iterator.get(), reinterpret_cast<const UChar*>(units),
                     static_cast<int32_t>(length), &error);
    if (!iterator || U_FAILURE(error)) {
        // Without data: between any two units, which at least keeps texts in their boxes.
        for (UInt8& at : boundaries)
            at |= boundary;
        return;
    }
    for (int32_t at = ubrk_first(iterator.get()); at != UBRK_DONE; at = ubrk_next(iterator.get()))
        boundaries[static_cast<std::size_t>(at)] |= boundary;
}

std::vector<UInt8> FlowBreaker::Find(PtrConstWChar units, UInt32 length)
{
    std::vector<UInt8> boundaries(std::size_t{length} + 1, FlowInside);
    Mark(_lines, false, units, length, FlowBreak, boundaries);
    if (std::any_of(units, units + length, [](WChar unit) { return unit >= kFirstMark; })) {
        Mark(_characters, true, units, length, FlowCluster, boundaries);
    } else {
        for (UInt32 i = 0; i < length; ++i) {
            if (i == 0 || units[i] != kLineFeed || units[i - 1] != kCarriageReturn)
                boundaries[i] |= FlowCluster;
        }
    }
    boundaries[length] |= FlowCluster | FlowBreak;
    boundaries[0] = length == 0 ? boundaries[0] : UInt8{FlowInside};
    return boundaries;
}

} // namespace zelxxx
