#include "call_recorder.h"

#include <initializer_list>
#include <utility>

namespace kestrin_test {

namespace {

using NamedBits = std::initializer_list<std::pair<unsigned, const char*>>;

/** The names of the bits that are set, joined by '|'; `none` without any, a number for others. */
std::string Bits(unsigned value, const char* none, NamedBits names)
{
    std::string text;
    for (const auto& [bit, name] : names) {
        if (value & bit)
            text += (text.empty() ? "" : "|") + std::string(name);
        value &= ~bit;
    }
    if (value != 0)
        text += (text.empty() ? "" : "|") + std::to_string(value);
    return text.empty() ? none : text;
}

std::string Four(int a, int b, int c, int d)
{
    return "[" + std::to_string(a) + " " + std::to_string(b) + " " + std::to_string(c) + " " +
           std::to_string(d) + "]";
}

std::map<const void*, std::string>& Names()
{
    static std::map<const void*, std::string> names;
    return names;
}

std::string Format(DFBSurfacePixelFormat format)
{
    switch (format) {
    case DSPF_ARGB:
        return "ARGB";
    case DSPF_LUT8:
        return "LUT8";
    default:
        return std::to_string(format);
    }
}

std::string SizeAndFormat(unsigned flags, int width, int height, DFBSurfacePixelFormat format)
{
    return "{flags " + std::to_string(flags) + ", " + std::to_string(width) + "x" +
           std::to_string(height) + ", " + Format(format) + "}";
}

} // namespace

std::string Described(DFBSurfaceDrawingFlags flags)
{
    return Bits(flags, "NOFX",
                {{DSDRAW_BLEND, "BLEND"},
                 {DSDRAW_DST_COLORKEY, "DST_COLORKEY"},
                 {DSDRAW_SRC_PREMULTIPLY, "SRC_PREMULTIPLY"},
                 {DSDRAW_DST_PREMULTIPLY, "DST_PREMULTIPLY"},
                 {DSDRAW_DEMULTIPLY, "DEMULTIPLY"},
                 {DSDRAW_XOR, "XOR"}});
}

std::string Described(DFBSurfaceBlittingFlags flags)
{
    return Bits(flags, "NOFX",
                {{DSBLIT_BLEND_ALPHACHANNEL, "BLEND_ALPHACHANNEL"},
                 {DSBLIT_BLEND_COLORALPHA, "BLEND_COLORALPHA"},
                 {DSBLIT_SRC_COLORKEY, "SRC_COLORKEY"},
                 {DSBLIT_DST_COLORKEY, "DST_COLORKEY"},
                 {DSBLIT_SRC_PREMULTIPLY, "SRC_PREMULTIPLY"},
                 {DSBLIT_DST_PREMULTIPLY, "DST_PREMULTIPLY"},
                 {DSBLIT_DEMULTIPLY, "DEMULTIPLY"}});
}

std::string Described(DFBSurfacePorterDuffRule rule)
{
    switch (rule) {
    case DSPD_NONE:
        return "NONE";
    case DSPD_SRC:
        return "SRC";
    case DSPD_SRC_OVER:
        return "SRC_OVER";
    case DSPD_DST_OVER:
        return "DST_OVER";
    default:
        return std::to_string(rule);
    }
}

std::string Described(DFBSurfaceTextFlags flags)
{
    return Bits(flags, "LEFT",
                {{DSTF_CENTER, "CENTER"},
                 {DSTF_RIGHT, "RIGHT"},
                 {DSTF_TOP, "TOP"},
                 {DSTF_BOTTOM, "BOTTOM"}});
}

std::string Described(DFBSurfaceLockFlags flags)
{
    return Bits(flags, "none", {{DSLF_READ, "READ"}, {DSLF_WRITE, "WRITE"}});
}

std::string Described(DFBSurfaceFlipFlags flags)
{
    return Bits(flags, "NONE", {});
}

std::string Described(DFBDisplayLayerCooperativeLevel level)
{
    return level == DLSCL_EXCLUSIVE ? "EXCLUSIVE" : std::to_string(level);
}

std::string Described(const DFBRegion_C* region)
{
    return region ? Four(region->x1, region->y1, region->x2, region->y2) : "null";
}

std::string Described(const DFBRectangle_C* rectangle)
{
    return rectangle ? Four(rectangle->x, rectangle->y, rectangle->w, rectangle->h) : "null";
}

std::string Described(const DFBColor* color)
{
    return Four(color->a, color->r, color->g, color->b);
}

std::string Described(const DFBSurfaceDescription* description)
{
    return SizeAndFormat(description->flags, description->width, description->height,
                         description->pixelformat);
}

std::string Described(const DFBDisplayLayerConfig* config)
{
    return SizeAndFormat(config->flags, config->width, config->height, config->pixelformat);
}

std::string Described(const char* text)
{
    return std::to_string(static_cast<unsigned char>(*text));
}

void NameInLogs(const void* object, const std::string& name)
{
    Names()[object] = name;
}

std::string NameOf(const void* object)
{
    if (!object)
        return "null";
    const auto found = Names().find(object);
    return found == Names().end() ? "object" : found->second;
}

} // namespace kestrin_test
