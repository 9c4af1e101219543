/** The DirectFB surface behind a canvas, for tests of the engine's insides. */
#pragma once

#include "DFB/view.h"

namespace kestrin_test {

/** Not held; the canvas is one of the engine's. */
inline IDirectFBSurface* SurfaceOf(zelxxx::ICanvas* canvas)
{
    return zelxxx::SideOf<zelxxx::CanvasBase>(canvas)->GetSurface();
}

} // namespace kestrin_test
