/** Comparing, printing and collecting of dirty rectangles. */
#pragma once

#include "dirty.h"

#include <ostream>
#include <vector>

namespace zelxxx {

inline bool operator==(const DirtyRect& a, const DirtyRect& b)
{
    return a.x1 == b.x1 && a.y1 == b.y1 && a.x2 == b.x2 && a.y2 == b.y2;
}

inline void PrintTo(const DirtyRect& rect, std::ostream* out)
{
    *out << "(" << rect.x1 << ", " << rect.y1 << ", " << rect.x2 << ", " << rect.y2 << ")";
}

} // namespace zelxxx

namespace kestrin_test {

/** What a manager delivers for a bound, in the order of delivery. */
inline std::vector<zelxxx::DirtyRect> Delivered(const zelxxx::DirtyManager& manager,
                                                const zelxxx::DirtyRect& bound)
{
    class Recorder : public zelxxx::IDirtyRectHandler
    {
    public:
        void HandleRect(const zelxxx::DirtyRect& dirty_rect) override
        {
            rects.push_back(dirty_rect);
        }
        std::vector<zelxxx::DirtyRect> rects;
    };
    Recorder recorder;
    manager.Handle(bound, &recorder);
    return recorder.rects;
}

} // namespace kestrin_test
