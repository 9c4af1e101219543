/** The object model and the shared arithmetic, for the engine's own sources. */
#pragma once

#include "ttypes.h"
#include "vrel_kestrin_obj.h"

namespace zelxxx {

/** The engine's own side of an interface object; null when another kind of object is behind it. */
template <class Implementation, class Interface>
Implementation* ToImplementation(Interface* object)
{
    return dynamic_cast<Implementation*>(object);
}

} // namespace zelxxx
