/** Pictures. */
#pragma once

#include "tbase.h"
#include "vrel_kestrin_graphic.h"

#include <directfb.h>

#include <cstddef>
#include <memory>

namespace zelxxx {

class PixelReader;

/** A frame of an image. */
struct FrameInfo
{
    IDirectFBSurface* surf = nullptr; /**< the pixels, owned; null when it could not be made */
    int colorkey = 0;                 /**< 0x00BBGGRR, or -1 for none */
};

/**
 * A picture that keeps its pixels in one of three places:
 *
 *     frames        a DirectFB surface each: images from a file, and what a client hands in for
 *                   the frame buffer, but for 1-bit and 32-bit pixels
 *     _image_data   memory, rows without padding: the rest of what a client hands in
 *     the client    behind its conversion routine
 *
 * Pixels that are in no surface are converted, at every painting, into a scratch surface that suits
 * the target, and drawn from there.
 */
class Image : public ZELObject<IImage, Image>
{
public:
    /** Reads an image file; one that cannot be read leaves an image without frames. */
    explicit Image(const char* file_name);
    /** Takes a client's pixels; zelCreateImage has the details. */
    Image(ColorMode color_mode, MetricValue width, MetricValue height, PtrConstAny data,
          ImageBufferMode image_buffer_mode, ImageType image_type, DWORD datasize,
          Convert2DrawableRoutine_t pCvt, MonoGlyphAttr* pAttr);
    ~Image() override;

    UInt16 GetWidth() override { return _width; }
    UInt16 GetHeight() override { return _height; }
    int GetFrameCount() override { return _frame_count; }
    ImageType GetImageType() override { return _image_type; }
    void ImageClear(ColorMode color_mode, MetricValue x, MetricValue y, MetricValue w,
                    MetricValue h, ColorValue color, BlendValue blend) override;
    void SetImageData(UInt32* imagedata, UInt32 row_bytes, MetricValue x, MetricValue y,
                      MetricValue width, MetricValue height, ColorMode colormode) override;
    UInt8* GetImageBuffer() override { return _image_data.get(); }
    void SetFileSize(int nSize) override { _filesize = nSize; }
    int GetFileSize() override { return _filesize; }
    void SetAttribute(Int32 nLeft, Int32 nTop) override;
    void GetAttribute(Int32& nLeft, Int32& nTop) override;

    /** The part of the picture that SetImageData writes: half open, cut at the picture. */
    virtual void SetClipping(MetricValue left, MetricValue top, MetricValue right,
                             MetricValue bottom);
    /**
     * Draws a part of a frame under the blitting flags and colour of the surface. Memory has one
     * frame.
     *
     * @param x, y           where the part goes, in pixels of the surface
     * @param width, height  size of the part
     * @param src_x, src_y   its place in the picture
     * @param blend_mode     BlendSrcOver8BIT draws indices in memory by table, BlendSrcCopy writes
     *                       8-bit ones as they are; both on an 8-bit surface only
     */
    virtual void PaintToSurface(IDirectFBSurface* surface, UInt16 frame, MetricValue x,
                                MetricValue y, MetricValue width, MetricValue height,
                                MetricValue src_x, MetricValue src_y, BlendMode blend_mode);

    /** Whether there are frames. */
    bool IsAvailable() const { return _frames && _frame_count > 0; }
    void Initialize(const char* file_name);
    void Uninitialize();

    /**
     * Decompresses an NRV2B stream. Neither buffer is accessed outside its length.
     *
     * @return 1 at the stream's end marker, which may come before the output is full, or after one
     *         byte more than it holds; 0 for every stream that is none
     */
    static int Decode(const UInt8* buf_in, std::size_t len_in, UInt8* buf_out, std::size_t len_out);

protected:
    Int32 _clip_x1, _clip_y1, _clip_x2, _clip_y2;

private:
    /** A part of a picture, from (src_x, src_y) on, on its way to (x, y) of a surface. */
    struct Part
    {
        Int32 x, y, width, height, src_x, src_y;

        /** Cuts it at the picture; false when nothing is left. */
        bool CutAtPicture(Int32 picture_width, Int32 picture_height);
    };

    Image();
    void LoadFrame(FrameInfo& frame, const UInt8* pixels, std::size_t size);
    void TakeColors(const UInt8* data, std::size_t size, ImageType image_type);
    void CreateFrame(const UInt8* data);
    bool HasFirstFrame() const { return _image_buffer_mode == UseFrameBuffer && FirstSurface(); }
    IDirectFBSurface* FirstSurface() const { return IsAvailable() ? _frames[0].surf : nullptr; }
    bool CreateStorage();
    void StorePart(UInt8* pixels, std::size_t pitch, const UInt8* from, std::size_t row_bytes,
                   std::size_t pixel_size, std::size_t count) const;
    void PaintFrame(IDirectFBSurface* surface, const FrameInfo* info, Part part);
    void PaintData(IDirectFBSurface* surface, const UInt8* data, Part part, BlendMode blend_mode);
    static void WriteIndices(IDirectFBSurface* surface, const PixelReader& pixels,
                             const Part& part);
    IDirectFBSurface* FilledScratch(const PixelReader& pixels, const Part& part,
                                    DFBSurfacePixelFormat format);
    void PrepareScratch(int width, int height, DFBSurfacePixelFormat format);

    std::unique_ptr<FrameInfo[]> _frames;
    int _frame_count;
    std::unique_ptr<UInt8[]> _image_data;
    ImageBufferMode _image_buffer_mode;
    ImageType _image_type;
    UInt16 _width, _height;
    ColorMode _color_mode;
    Int32 _left, _top;
    IDirectFBSurface* _image_surface; /**< scratch, as large as was ever needed */
    int _filesize;
    Convert2DrawableRoutine_t _pCvt;
    MonoGlyphAttr _mono_attr;
};

} // namespace zelxxx
