/**
 * @file
 * Pictures for any display, from files that other programs write.
 *
 *     ZELObjPtr<IImageLoader> loader(zelCreateImageLoader());
 *     if (!loader->Open("logo.png"))
 *         puts(loader->GetError()); // "logo.png: ..."
 *     PImage logo(loader->CreateImage(Color32Bit, 0));
 *     sprite->SetImage(logo);
 *
 * The engine's own image files hold palette indices, which only an 8-bit display shows as they are.
 * A loader reads PNG, JPEG and image files alike and makes images that look right on the display at
 * hand: colours with opacity for 32 bits, the nearest indices of its palette for 8 bits.
 *
 * Ownership: a loader keeps what it has read, an image a copy of its pixels, so that neither needs
 * the file, the loader or one another afterwards. Images come with a count of 0, like those of the
 * engine's factories.
 *
 * Failures: no function throws or prints. One that fails says so, and GetError names the file and
 * the reason.
 *
 * Threads: the engine's one; all calls come from the thread that updates the screen.
 */
#pragma once

#include "vrel_kestrin_graphic.h"

namespace zelxxx {

/**
 * @defgroup loader Picture loader
 * Makes images of PNG, JPEG and image files that look right on the display at hand.
 * @{
 */

/** Reads picture files and makes images of them, one image for each frame. */
class KESTRIN_EXPORT IImageLoader : public IZELObject
{
public:
    /**
     * Reads and unpacks a picture, in place of the one before. PNG and JPEG files are known by how
     * they begin; everything else is taken for an image file of 8 bits a pixel (zelCreateImage
     * describes it). Of a JPEG with an orientation note the pixels are taken as they are stored.
     *
     * @param file_name  not null; a regular file of at most 64 megabytes
     * @return false, with no picture loaded, when the file cannot be read, is damaged or cut short,
     *         or has more than 32767 pixels a side or 67108864 in all frames
     */
    virtual bool Open(const char* file_name) = 0;
    /**
     * Reads the palette that the indices of image files name: a palette file, of 1024 bytes
     * (zelCreatePalette describes it). It applies to images made afterwards, whatever is open.
     *
     * @param file_name  null forgets the palette
     * @return false, with the palette unchanged, when the file cannot be read or has another size
     */
    virtual bool OpenPalette(const char* file_name) = 0;
    /**
     * Chooses the palette of the 8-bit display that images are made for.
     *
     * @param palette  held; null, as at first, stands for the palette last given to a view or else
     *                 the fixed one of 188 colours
     */
    virtual void SetDisplayPalette(IPalette* palette) = 0;

    /** Width of a frame. @return pixels, at most 32767; 0 when no picture is loaded */
    virtual UInt16 GetWidth() = 0;
    /** Height of a frame. @return pixels, at most 32767; 0 when no picture is loaded */
    virtual UInt16 GetHeight() = 0;
    /** How many frames there are. @return 1 but for image files; 0 when no picture is loaded */
    virtual int GetFrameCount() = 0;

    /**
     * Makes an image of one frame, with IImage::GetFrameCount 1.
     *
     *     picture             32-bit display                  8-bit display
     *     PNG, JPEG           its colours and opacity         the nearest of the display's palette
     *     image file          its palette's colours           the nearest of the display's palette
     *       without palette   colours of the view's palette   its indices
     *
     * Images for 32 bits are premultiplied, as painters take them: a half transparent PNG drawn
     * with BlendSrcOver looks as it does elsewhere. Images for 8 bits are indices in memory, which
     * a scene of BlendSrcOver8BIT blends by table. An image file without palette gives indices
     * for either display; zelCreateImage says which colours these have on 32 bits.
     *
     * @param display_mode  the engine's: Color8Bit, or any other for 32 bits
     * @param frame         counted from 0
     * @return an image with a count of 0; null when no picture is loaded, it has no such frame, or
     *         memory is short
     */
    virtual IImage* CreateImage(ColorMode display_mode, int frame) = 0;

    /**
     * What the last Open, OpenPalette or CreateImage that failed has to say. Of a loader without a
     * picture it still says why Open failed.
     *
     * @return "FILE: reason" without a line end, empty when none has failed. Owned by the loader,
     *         valid until its next call
     */
    virtual const char* GetError() = 0;
};

/** A loader without a picture. It may be made before the start of the engine. @return count 0 */
KESTRIN_EXPORT IImageLoader* zelCreateImageLoader();

/** @} */

} // namespace zelxxx
