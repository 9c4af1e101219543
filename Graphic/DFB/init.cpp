#include "font.h"
#include "tdebug.h"
#include "view.h"

#include <cstdio>
#include <sys/time.h>

namespace zelxxx {

namespace {

timeval tick_base = {};

// Whole seconds whose milliseconds fit in 32 bits.
constexpr UInt32 kMostSeconds = 4294967;

} // namespace

bool zelInitialize(UInt32 OSDWidth, UInt32 OSDHeight, UInt8 mode)
{
    if (!kestrin_debug)
        kestrin_debug = vrel_debug_category_new("Kestrin", 0, "kestrin debug");
    gettimeofday(&tick_base, nullptr);
    return zelInitOSD(OSDWidth, OSDHeight, mode);
}

bool zelInitOSD(UInt32 OSDWidth, UInt32 OSDHeight, UInt8 mode)
{
    View::DFBInitialize(OSDWidth, OSDHeight, mode);
    Font::Initialize();
    return true;
}

void zelUninitialize()
{
    View::DFBUnInitialize();
}

void zelReleaseOSD()
{
    View::DFBUnInitialize();
}

UInt32 zelGetTickCount()
{
    timeval now;
    if (gettimeofday(&now, nullptr) != 0)
        return 0;
    const auto elapsed = static_cast<UInt32>(now.tv_sec - tick_base.tv_sec);
    if (elapsed + 1 <= kMostSeconds) {
        const auto micro = static_cast<Int32>(now.tv_usec - tick_base.tv_usec);
        return 1000 * elapsed + static_cast<UInt32>(micro / 1000);
    }
    tick_base = now;
    return 0;
}

IDirectFB* zelGetDFBHandle()
{
    return View::_dfb;
}

unsigned long zelGetDFBPhyAddr()
{
    return View::_phyaddr;
}

IDirectFBSurface* zelGetSubtitleSurface()
{
    return View::_surface_subtitle;
}

ZELObjPtr<IPalette> zelGetCurrentPalette()
{
    return View::_current_palette;
}

// The sink of error text. It formats and discards: a debugging build writes `text` somewhere here.

// Weak tells compilers that this empty body may not be the one that is called: a debugging program
// puts its own before the library's, and Clang would otherwise leave the calls out.
[[gnu::weak]] void zelDebugMessage(PtrConstSChar) {}

void zelDebugMessage(Int32 number)
{
    char text[20];
    std::snprintf(text, sizeof text, "%d", number);
    zelDebugMessage(text);
}

void zelDebugMessage(UInt32 number)
{
    char text[20];
    std::snprintf(text, sizeof text, "%u", number);
    zelDebugMessage(text);
}

} // namespace zelxxx
