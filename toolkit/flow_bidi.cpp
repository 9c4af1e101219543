#include "flow_bidi_p.h"

#include <fribidi.h>

#include <algorithm>
#include <numeric>

namespace zelxxx {

namespace {

static_assert(sizeof(FriBidiChar) == sizeof(UInt32), "characters are handed over as they are");
static_assert(sizeof(FriBidiCharType) == sizeof(UInt32), "so are their classes");
static_assert(sizeof(FriBidiLevel) == sizeof(signed char), "and levels");

/** Below it no character runs from right to left, joins or changes the order of others. */
constexpr UInt32 kFirstBidirectional = 0x590;

constexpr FriBidiFlags kJoin = FRIBIDI_FLAG_SHAPE_ARAB_PRES | FRIBIDI_FLAG_SHAPE_MIRRORING;
constexpr FriBidiFlags kLigate = kJoin | FRIBIDI_FLAG_SHAPE_ARAB_LIGA;

FriBidiParType BaseOf(FlowDirection direction)
{
    switch (direction) {
    case FlowLeftToRight:
        return FRIBIDI_PAR_LTR;
    case FlowRightToLeft:
        return FRIBIDI_PAR_RTL;
    default:
        return FRIBIDI_PAR_ON;
    }
}

bool IsPlain(const UInt32* characters, std::size_t count)
{
    return std::all_of(characters, characters + count,
                       [](UInt32 character) { return character < kFirstBidirectional; });
}

} // namespace

const UInt32 kNeutralType = FRIBIDI_TYPE_ON;

FlowOrder::FlowOrder(const std::vector<UInt32>& text)
    : characters(text), types(text.size(), FRIBIDI_TYPE_LTR), levels(text.size()), shapes(text),
      ligatures(text), joined(text.size())
{
}

bool FlowOrder::Resolve(std::size_t begin, std::size_t end, FlowDirection direction)
{
    const std::size_t size = end - begin;
    if (direction != FlowRightToLeft && IsPlain(characters.data() + begin, size))
        return false;
    const auto count = static_cast<FriBidiStrIndex>(size);
    fribidi_get_bidi_types(characters.data() + begin, count, types.data() + begin);
    std::vector<FriBidiBracketType> brackets(size);
    fribidi_get_bracket_types(characters.data() + begin, count, types.data() + begin,
                              brackets.data());
    FriBidiParType base = BaseOf(direction);
    FriBidiLevel* const level = levels.data() + begin;
    if (fribidi_get_par_embedding_levels_ex(types.data() + begin, brackets.data(), count, &base,
                                            level) == 0)
        std::fill(level, level + count, FriBidiLevel{0}); // no memory: as it is written

    std::vector<FriBidiArabicProp> joining(size);
    fribidi_get_joining_types(characters.data() + begin, count, joining.data());
    fribidi_join_arabic(types.data() + begin, count, level, joining.data());
    for (std::size_t i = 0; i < size; ++i)
        joined[begin + i] = (joining[i] & FRIBIDI_JOINS_FOLLOWING_MASK(level[i])) != 0;
    std::vector<FriBidiArabicProp> ligating = joining;
    fribidi_shape(kJoin, level, count, joining.data(), shapes.data() + begin);
    fribidi_shape(kLigate, level, count, ligating.data(), ligatures.data() + begin);
    return FRIBIDI_IS_RTL(base);
}

std::vector<int> VisualOrder(const std::vector<UInt32>& types, std::vector<signed char>& levels,
                             bool right_to_left)
{
    std::vector<int> order(levels.size());
    std::iota(order.begin(), order.end(), 0);
    // Of no level above 0 it stays so; without memory it does, too.
    if (fribidi_reorder_line(FRIBIDI_FLAG_REORDER_NSM, types.data(),
                             static_cast<FriBidiStrIndex>(levels.size()), 0,
                             right_to_left ? FRIBIDI_PAR_RTL : FRIBIDI_PAR_LTR, levels.data(),
                             nullptr, order.data()) == 0)
        std::iota(order.begin(), order.end(), 0);
    return order;
}

} // namespace zelxxx
