/**
 * The engine on a display, for tests that look at what it draws.
 *
 *     EngineDisplay engine(64, 48);
 *     engine.Update(true);
 *     EXPECT_EQ(engine.Shot().At(3, 4), 0xff112233U);
 *
 * The display itself is made once in a process, since DirectFB reads its settings once; each engine
 * takes it at a size and colour mode of its own.
 */
#pragma once

#include "display_fixture.h"
#include "vrel_kestrin_graphic.h"

namespace kestrin_test {

class EngineDisplay
{
public:
    /** Starts the engine; of other modes than Color8Bit the display has 32 bits. */
    EngineDisplay(int width, int height, zelxxx::ColorMode mode = zelxxx::Color32Bit)
    {
        Display();
        zelxxx::zelInitialize(static_cast<zelxxx::UInt32>(width),
                              static_cast<zelxxx::UInt32>(height),
                              static_cast<zelxxx::UInt8>(mode));
    }
    ~EngineDisplay() { zelxxx::zelUninitialize(); }
    EngineDisplay(const EngineDisplay&) = delete;
    EngineDisplay& operator=(const EngineDisplay&) = delete;

    kestrin_display::ArgbImage Shot() const { return Display().Shot(); }
    std::vector<std::uint8_t> Indices() const { return Display().Indices(); }
    /** How often a picture or a part of one was presented. */
    std::uint64_t Presented() const { return Display().Facts().update_count; }

    static TestDisplay& Display()
    {
        static TestDisplay display;
        return display;
    }
};

/** What an opaque colour with red in its lowest byte looks like on a 32-bit display. */
constexpr std::uint32_t Shown(zelxxx::ColorValue color)
{
    return 0xff000000U | (color & 0xff) << 16 | (color & 0xff00) | (color >> 16 & 0xff);
}

} // namespace kestrin_test
