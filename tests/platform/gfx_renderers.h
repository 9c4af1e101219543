/**
 * The same drawing by DirectFB's software renderer and by the graphics driver.
 *
 * DirectFB chooses its renderer when a process starts, so each renderer draws in a process of its
 * own and hands its pixels back through shared memory.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <directfb.h>
#include <gtest/gtest.h>

namespace kestrin_test {

enum class Renderer
{
    Software,    ///< DirectFB's own, as without the driver
    Driver,      ///< the driver, and DirectFB's own for the rest
    DriverAlone, ///< the driver; nothing draws the rest
};

/** What a drawing uses: surfaces that live as long as the process. */
class Studio
{
public:
    Studio(IDirectFB* dfb, std::uint32_t* words, std::size_t room);

    IDirectFB* Dfb() const { return _dfb; }

    /** A surface that is all zeros. */
    IDirectFBSurface* Make(int width, int height, DFBSurfacePixelFormat format);

    /** Writes words or bytes, row by row, whatever the state. */
    void Write(IDirectFBSurface* surface, const std::function<std::uint32_t(int x, int y)>& pixel);

    /** Gives a surface of indices other colours. */
    void SetColors(IDirectFBSurface* surface, const std::function<std::uint32_t(int index)>& color);

    /** Hands a surface's pixels to whoever asked for the drawing, beginning with what it shows. */
    void Show(IDirectFBSurface* surface);

    /** Hands over one number. */
    void Show(std::uint32_t number);

    std::size_t Shown() const { return _shown; }

private:
    IDirectFB* _dfb;
    std::uint32_t* _words;
    std::size_t _room;
    std::size_t _shown = 0;
};

using Scene = std::function<void(Studio&)>;

/** What a scene showed, in order. Throws if its process ends badly. */
std::vector<std::uint32_t> Drawn(Renderer renderer, const Scene& scene);

/** Succeeds when a scene shows the same with the driver alone as with DirectFB's renderer. */
testing::AssertionResult DriverDrawsTheSame(const Scene& scene);

/** Succeeds when a scene shows the same in two ways; what it shows must not all be zero. */
testing::AssertionResult SameDrawn(const std::vector<std::uint32_t>& actual,
                                   const std::vector<std::uint32_t>& expected);

} // namespace kestrin_test
