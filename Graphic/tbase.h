/** The object model and the shared arithmetic, for the engine's own sources. */
#pragma once

#include "ttypes.h"
#include "vrel_kestrin_obj.h"

namespace zelxxx {

/** Another side of an object: its implementation or an interface; null when it has no such side. */
template <class Side, class Object>
Side* SideOf(Object* object)
{
    return dynamic_cast<Side*>(object);
}

} // namespace zelxxx
