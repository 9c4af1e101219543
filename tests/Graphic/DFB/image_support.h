/** Images for tests, and what they look like when painted. */
#pragma once

#include "DFB/image.h"
#include "surface_of.h"
#include "surface_pixels.h"

#include <vector>

namespace kestrin_test {

/** What canvases have on them before an image is painted. */
constexpr std::uint32_t kGroundIndex = 99;
constexpr std::uint32_t kGroundColor = 0xff203040;

inline std::uint32_t GroundOf(zelxxx::ColorMode mode)
{
    return mode == zelxxx::Color8Bit ? kGroundIndex : kGroundColor;
}

/** Paints a frame's top left part at (0, 0) of a canvas that large, without blitting flags. */
inline kestrin_display::ArgbImage PaintedOn(zelxxx::ColorMode mode, zelxxx::IImage* image,
                                            int frame, int width, int height,
                                            zelxxx::BlendMode blend_mode = zelxxx::BlendSrcOver)
{
    const auto w = static_cast<zelxxx::MetricValue>(width);
    const auto h = static_cast<zelxxx::MetricValue>(height);
    const zelxxx::PCanvas canvas(zelxxx::zelCreateCanvas(w, h, mode));
    SetPixels(SurfaceOf(canvas), kestrin_display::ArgbImage(width, height, GroundOf(mode)));
    zelxxx::SideOf<zelxxx::Image>(image)->PaintToSurface(
        SurfaceOf(canvas), static_cast<zelxxx::UInt16>(frame), 0, 0, w, h, 0, 0, blend_mode);
    return PixelsOf(SurfaceOf(canvas));
}

/** An image of a client's bytes. */
inline zelxxx::PImage MemoryImage(zelxxx::ColorMode mode, int width, int height,
                                  const std::vector<zelxxx::UInt8>& bytes,
                                  zelxxx::ImageBufferMode buffer = zelxxx::UseSystemMemory,
                                  zelxxx::ImageType type = zelxxx::TypeImg,
                                  zelxxx::MonoGlyphAttr* mono = nullptr)
{
    return zelxxx::zelCreateImage(mode, static_cast<zelxxx::MetricValue>(width),
                                  static_cast<zelxxx::MetricValue>(height),
                                  bytes.empty() ? nullptr : bytes.data(), buffer, type,
                                  static_cast<zelxxx::DWORD>(bytes.size()), nullptr, mono);
}

} // namespace kestrin_test
