/** The object model and the shared arithmetic, for the engine's own sources. */
#pragma once

#include "ttypes.h"
#include "vrel_kestrin_obj.h"

#include <type_traits>
#include <typeinfo>

namespace zelxxx {

/** Another side of an object: its implementation or an interface; null when it has no such side. */
template <class Side, class Object>
Side* SideOf(Object* object)
{
    // Mostly the object is a Side and nothing more, which is told in a fraction of the time.
    if constexpr (std::is_base_of_v<Object, Side>) {
        if (object && typeid(*object) == typeid(Side))
            return static_cast<Side*>(object);
    }
    return dynamic_cast<Side*>(object);
}

} // namespace zelxxx
