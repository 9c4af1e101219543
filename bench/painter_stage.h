/** The engine on a display of one colour mode, with all that a painter needs. */
#pragma once

#include "DFB/font.h"
#include "DFB/painter.h"
#include "engine_display.h"
#include "quiet_output.h"
#include "surface_of.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace kestrin_bench {

constexpr int kStageWidth = 1280;
constexpr int kStageHeight = 720;

/** Bytes without order; as pixels they have all opacities. */
inline std::vector<zelxxx::UInt8> Noise(std::size_t size)
{
    std::vector<zelxxx::UInt8> bytes(size);
    std::uint32_t value = 1;
    for (zelxxx::UInt8& byte : bytes) {
        value = value * 1664525 + 1013904223;
        byte = static_cast<zelxxx::UInt8>(value >> 24);
    }
    return bytes;
}

struct Stage
{
    explicit Stage(zelxxx::ColorMode color_mode)
        : mode(color_mode), engine(kStageWidth, kStageHeight, mode),
          canvas(zelxxx::zelCreateCanvas(kStageWidth, kStageHeight, mode)),
          other(zelxxx::zelCreateCanvas(kStageWidth, kStageHeight, mode)),
          view(zelxxx::zelCreateView(0, kStageWidth, kStageHeight, mode, false)),
          painter(zelxxx::zelCreatePainter(canvas)),
          font(new zelxxx::Font("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf")),
          surface(kestrin_test::SurfaceOf(canvas)), source(kestrin_test::SurfaceOf(other))
    {
        for (IDirectFBSurface* each : {surface, source}) {
            void* pixels = nullptr;
            int pitch = 0;
            each->Lock(each, DSLF_WRITE, &pixels, &pitch);
            const auto noise = Noise(static_cast<std::size_t>(pitch) * kStageHeight);
            std::copy(noise.begin(), noise.end(), static_cast<zelxxx::UInt8*>(pixels));
            each->Unlock(each);
        }
    }
    ~Stage() { zelxxx::Painter::ReleaseFontSurface(); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /** The stage of a mode; there is one at a time. */
    static Stage& Of(zelxxx::ColorMode mode)
    {
        auto& stage = Current();
        if (!stage || stage->mode != mode) {
            const QuietOutput quiet;
            stage.reset();
            stage.emplace(mode);
        }
        return *stage;
    }
    static void Leave()
    {
        const QuietOutput quiet;
        Current().reset();
    }

    zelxxx::ColorMode mode;
    kestrin_test::EngineDisplay engine;
    zelxxx::PCanvas canvas;
    zelxxx::PCanvas other;
    zelxxx::PView view;
    zelxxx::ZELObjPtr<zelxxx::IPainter> painter;
    zelxxx::ZELObjPtr<zelxxx::IFont> font;
    IDirectFBSurface* surface; /**< of the canvas */
    IDirectFBSurface* source;  /**< of the other one */

private:
    static std::optional<Stage>& Current()
    {
        static std::optional<Stage> stage;
        return stage;
    }
};

} // namespace kestrin_bench
