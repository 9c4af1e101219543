/**
 * A display for tests that draw through DirectFB.
 *
 *     TEST(Painter, FillsTheRow)
 *     {
 *         TestDisplay display;            // before anything initialises DirectFB
 *         DrawSomething();                // DirectFBInit, DirectFBCreate, layer 1, ...
 *         EXPECT_EQ(display.Shot().At(3, 4), 0xff112233U);
 *     }
 *
 * DirectFB reads its settings once in a process, so a process has one TestDisplay: one test case a
 * process, as CTest runs them, or one display in a test environment or suite that all cases share.
 *
 * DirectFB itself draws; only the panel is missing. Pixels drawn into the front buffer are visible
 * to Shot() at once, those of a back buffer after Flip. Layer settings (opacity, configuration)
 * reach the display with the next GetSurface or Flip, as DirectFB hands them to any driver.
 */
#pragma once

#include "screen_reader.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kestrin_test {

class TestDisplay
{
public:
    /** The layer that is looked at if a test names none. */
    static constexpr int default_layer = 1;

    /**
     * Prepares a screen of its own in a temporary file and leads DirectFB to it. A DFBARGS of the
     * environment is replaced: a test must not draw on somebody's display.
     *
     * @param width   of the screen in pixels
     * @param height  of the screen in pixels
     */
    explicit TestDisplay(int width = 1280, int height = 720);

    /** Removes the file. DirectFB may still run and draw on unseen. */
    ~TestDisplay();

    TestDisplay(const TestDisplay&) = delete;
    TestDisplay& operator=(const TestDisplay&) = delete;

    /** Where the screen file is; it exists from DirectFBCreate on. */
    const std::string& Path() const { return _path; }

    /** The value of DFBARGS, for child processes that are to draw on this display. */
    const std::string& Arguments() const { return _arguments; }

    /** A reader on the file. Throws kestrin_display::ScreenError before DirectFBCreate. */
    kestrin_display::ScreenReader Reader() const { return kestrin_display::ScreenReader(_path); }

    /** Size, pitch, format, opacity, counters and palette of a layer. */
    kestrin_display::LayerFacts Facts(int layer = default_layer) const;

    /** The picture of a layer as 0xAARRGGBB, palette applied, layer opacity left out. */
    kestrin_display::ArgbImage Shot(int layer = default_layer) const;

    /** The palette indices of an LUT8 layer, row by row without gaps; throws for other formats. */
    std::vector<std::uint8_t> Indices(int layer = default_layer) const;

private:
    std::string _directory;
    std::string _path;
    std::string _arguments;
};

} // namespace kestrin_test
