/** Where a text may be divided: lines and what counts as one character, by the Unicode rules. */
#pragma once

#include "vrel_kestrin_datatype.h"

#include <memory>
#include <vector>

struct UBreakIterator;

namespace zelxxx {

/** What may happen before a code unit, or before the end of the text; bits. */
enum FlowBoundary : UInt8
{
    FlowInside = 0,
    FlowCluster = 1, /**< a character, with the marks that belong to it, ends here */
    FlowBreak = 2    /**< a line may end here */
};

/** Finds boundaries in texts, one after another. */
class FlowBreaker
{
public:
    FlowBreaker();
    ~FlowBreaker();
    FlowBreaker(const FlowBreaker&) = delete;
    FlowBreaker& operator=(const FlowBreaker&) = delete;

    /**
     * FlowBoundary bits for each of the `length` code units and for the end: for what precedes the
     * unit. Nothing ends before the first; everything ends before the end.
     *
     * @param units  UTF-16; unpaired surrogates are characters of their own
     */
    std::vector<UInt8> Find(PtrConstWChar units, UInt32 length);

private:
    struct Closer
    {
        void operator()(UBreakIterator* iterator) const;
    };
    using Iterator = std::unique_ptr<UBreakIterator, Closer>;

    static void Mark(Iterator& iterator, bool characters, PtrConstWChar units, UInt32 length,
                     UInt8 boundary, std::vector<UInt8>& boundaries);

    Iterator _lines;
    Iterator _characters;
};

} // namespace zelxxx
