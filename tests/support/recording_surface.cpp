#include "recording_surface.h"

#include <utility>

namespace kestrin_test {

RecordingSurface::RecordingSurface(IDirectFBSurface* surface) : _log(_own), _recorder(surface, _own)
{
    WatchAll();
}

RecordingSurface::RecordingSurface(IDirectFBSurface* surface, CallLog& log,
                                   const std::string& prefix)
    : _log(log), _recorder(surface, log, prefix)
{
    WatchAll();
}

CallLog RecordingSurface::Take()
{
    return std::exchange(_log, {});
}

/** Everything that draws, changes the drawing state or gives access to the pixels. */
void RecordingSurface::WatchAll()
{
#define WATCH(operation) _recorder.Watch<&IDirectFBSurface::operation>(#operation)
    WATCH(GetPalette);
    WATCH(SetPalette);
    WATCH(Lock);
    WATCH(Unlock);
    WATCH(GetPhysicalAddress);
    WATCH(Flip);
    WATCH(Clear);
    WATCH(SetClip);
    WATCH(SetColor);
    WATCH(SetColorIndex);
    WATCH(SetSrcBlendFunction);
    WATCH(SetDstBlendFunction);
    WATCH(SetPorterDuff);
    WATCH(SetSrcColorKey);
    WATCH(SetSrcColorKeyIndex);
    WATCH(SetDstColorKey);
    WATCH(SetDstColorKeyIndex);
    WATCH(SetBlittingFlags);
    WATCH(Blit);
    WATCH(TileBlit);
    WATCH(StretchBlit);
    WATCH(SetDrawingFlags);
    WATCH(FillRectangle);
    WATCH(DrawRectangle);
    WATCH(DrawLine);
    WATCH(SetFont);
    WATCH(DrawString);
    WATCH(DrawGlyph);
    WATCH(SetEncoding);
    WATCH(SetRenderOptions);
    WATCH(Write);
    WATCH(SetColors);
#undef WATCH
}

} // namespace kestrin_test
