/** Colours of the parts of a text. */
#pragma once

#include "vrel_kestrin_flow.h"

#include <map>

namespace zelxxx {

struct FlowColor
{
    ColorValue color;
    BlendValue blend;

    bool operator==(const FlowColor& other) const
    {
        return color == other.color && blend == other.blend;
    }
};

/** Runs that do not overlap any more: each place up to the next has one colour or none. */
class FlowColors
{
public:
    FlowColors() { _from[0] = {false, {}}; }

    /** Colours a run, over what was there. */
    void Add(const FlowColorRun& run)
    {
        if (run.begin >= run.end)
            return;
        const Entry behind = std::prev(_from.upper_bound(run.end))->second;
        _from.erase(_from.lower_bound(run.begin), _from.upper_bound(run.end));
        _from[run.begin] = {true, {run.color, run.blend}};
        _from[run.end] = behind;
    }

    FlowColor At(UInt32 unit, const FlowColor& otherwise) const
    {
        const Entry& entry = std::prev(_from.upper_bound(unit))->second;
        return entry.set ? entry.color : otherwise;
    }

private:
    struct Entry
    {
        bool set;
        FlowColor color;
    };

    std::map<UInt32, Entry> _from;
};

} // namespace zelxxx
