/**
 * What the driver draws, and what it leaves to DirectFB.
 *
 * DirectFB describes an operation by a state: target and source, flags, blending functions, colour.
 * A Drawing answers whether it can do what a state asks for, takes the state over, and draws. Each
 * operation gives the pixels that DirectFB's software renderer gives.
 */
#pragma once

#include "directfb_core.h"
#include "kernels.h"

namespace kestrin_gfx {

class IndexTable;
class PairTable;

/** DirectFB keeps it in memory that it has filled with zeros, so it has no constructor. */
class Drawing
{
public:
    /** The operations that exist at all. */
    static constexpr auto operations =
        static_cast<DFBAccelerationMask>(DFXL_FILLRECTANGLE | DFXL_BLIT | DFXL_STRETCHBLIT);
    /** Those that cut at the clip rectangle themselves. */
    static constexpr DFBAccelerationMask clipping = DFXL_STRETCHBLIT;

    /** Whether one operation under a state is the driver's; colours and keys do not matter. */
    static bool CanDo(const CardState& state, DFBAccelerationMask operation);

    /** Gives it its loops and its memory. */
    void Open(const Kernels& kernels);
    /** Gives the memory back. */
    void Close();

    /** Takes over a state that CanDo has approved of, with its buffers locked. */
    void Prepare(CardState& state, DFBAccelerationMask operation);

    // These draw what Prepare was told, and are false where DirectFB must do it after all, with
    // nothing drawn yet. Rectangles are inside the surfaces.

    bool FillRectangle(const DFBRectangle& area) const;
    bool Blit(const DFBRectangle& from, int x, int y) const;
    bool StretchBlit(const DFBRectangle& from, const DFBRectangle& to) const;

private:
    enum class Fill
    {
        None,
        Opaque,
        Over,
        Straight
    };
    enum class Copy
    {
        None,
        Opaque,
        Keyed,
        Over,
        Faded,
        Straight,
        Covered,
        CoveredFaded
    };

    static Fill FillOf(const CardState& state);
    static Copy CopyOf(const CardState& state);
    static bool IsStretchUnder(const CardState& state);

    void PrepareFill(const CardState& state);
    void PrepareBlit(const CardState& state);
    Target At(int x, int y) const;
    Source From(int x, int y) const;
    Size Bytes(const Size& pixels) const;
    void FillIndicesOver(Target to, Size size) const;
    bool BlitInPlace(const DFBRectangle& from, int x, int y) const;
    void BlitPixels(Target to, Source from, Size size) const;
    void BlitFromPalette(Target to, Source from, Size size) const;
    void BlitIndices(Target to, Source from, Size size) const;
    void BlendIndices(Target to, Source from, Size size) const;
    void PutUnderIndices(std::uint8_t* to, const std::uint32_t* from, int count,
                         IndexTable& alone) const;

    const Kernels* _kernels;
    PairTable* _pairs;
    Target _target;
    Source _source;
    DFBSurfacePixelFormat _target_format;
    DFBSurfacePixelFormat _source_format;
    CorePalette* _target_palette;
    CorePalette* _source_palette;
    DFBRegion _clip;

    Fill _fill;
    std::uint32_t _pixel; // or index
    std::uint32_t _added;
    unsigned _keep;

    Copy _copy;
    unsigned _opacity;
    std::uint32_t _key;
};

} // namespace kestrin_gfx
