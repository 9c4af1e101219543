#include "image.h"

#include "color_util.h"
#include "image_decode_p.h"
#include "image_picture_p.h"
#include "image_pixels_p.h"
#include "tdebug.h"
#include "view.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace zelxxx {

namespace {

constexpr int kNoColorKey = -1;
constexpr int kColors = 256;

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;
using Bytes = std::unique_ptr<UInt8[]>;

/** What an image file says of itself. */
struct FileHeader
{
    static constexpr std::size_t kSize = 8;

    explicit FileHeader(const UInt8* bytes)
        : width(Number(bytes)), height(Number(bytes + 2)), depth(Number(bytes + 4)),
          frames(Number(bytes + 6))
    {
    }
    static UInt16 Number(const UInt8* bytes)
    {
        return static_cast<UInt16>(bytes[0] | bytes[1] << 8);
    }
    uint64_t FrameSize() const { return (uint64_t{depth} * width >> 3) * height; }
    uint64_t Size() const { return FrameSize() * frames; }

    UInt16 width, height, depth, frames;
};

/**
 * Reads what stands behind the header. The length is the whole file's: decoders are given a buffer
 * of that size, whose last bytes are zero.
 */
Bytes ReadStream(std::FILE* file, std::size_t* length)
{
    if (std::fseek(file, 0, SEEK_END) != 0)
        return nullptr;
    const long end = std::ftell(file);
    if (end < static_cast<long>(FileHeader::kSize))
        return nullptr;
    *length = static_cast<std::size_t>(end);
    Bytes stream(new (std::nothrow) UInt8[*length]());
    if (!stream || std::fseek(file, FileHeader::kSize, SEEK_SET) != 0)
        return nullptr;
    // What a short read leaves is zero, and damaged.
    static_cast<void>(std::fread(stream.get(), 1, *length - FileHeader::kSize, file) == 0);
    return stream;
}

/** The pixels of all frames; null unless the stream holds all that the header promises. */
Bytes DecodeFrames(const UInt8* stream, std::size_t length, std::size_t size)
{
    const StreamResult held = DecodeStream(stream, length, nullptr, size);
    if (held.end != StreamEnd::Marker || held.written < size)
        return nullptr;
    Bytes pixels(new (std::nothrow) UInt8[size]);
    if (!pixels || !Image::Decode(stream, length, pixels.get(), size))
        return nullptr;
    return pixels;
}

DFBSurfacePixelFormat FormatOf(IDirectFBSurface* surface)
{
    DFBSurfacePixelFormat format = DSPF_UNKNOWN;
    surface->GetPixelFormat(surface, &format);
    return format;
}

/** On an 8-bit display an LUT8 surface has the display's palette; null when there is none. */
IDirectFBSurface* CreateSurface(int width, int height, DFBSurfacePixelFormat format)
{
    DFBSurfaceDescription dsc = {};
    dsc.flags =
        static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
    dsc.width = width;
    dsc.height = height;
    dsc.pixelformat = format;
    IDirectFBSurface* img_surf = nullptr;
    DFBCHECK(View::_dfb->CreateSurface(View::_dfb, &dsc, &img_surf));
    if (img_surf && format == DSPF_LUT8)
        View::SharePalette(img_surf);
    return img_surf;
}

/** Colours of palette indices where the display has no palette: the view's, or the fixed ones. */
DFBColor ColorOfIndex(int index)
{
    const auto i = static_cast<UInt8>(index);
    if (IPalette* palette = View::_current_palette)
        return {palette->GetColorBlending(i), palette->GetColorRed(i), palette->GetColorGreen(i),
                palette->GetColorBlue(i)};
    if (index >= kMhegColorCount)
        return {0, 0, 0, 0};
    const UInt32 word = MhegPaletteWord(i);
    return {static_cast<UInt8>(~(word >> 24)), static_cast<UInt8>(word >> 16),
            static_cast<UInt8>(word >> 8), static_cast<UInt8>(word)};
}

/** Gives a surface of palette indices colours of its own, unless the display's are for all. */
void LoadPalette(IDirectFBSurface* surface)
{
    IDirectFBPalette* palette = nullptr;
    if (FormatOf(View::_primary) == DSPF_LUT8 || surface->GetPalette(surface, &palette) != DFB_OK ||
        !palette)
        return;
    DFBColor colors[kColors];
    for (int i = 0; i < kColors; ++i)
        colors[i] = ColorOfIndex(i);
    palette->SetEntries(palette, colors, kColors, 0);
    palette->Release(palette);
}

/** Converts a part of a picture to the rows of a locked surface of either format. */
void ConvertRows(const PixelReader& pixels, ColorMode mode, DFBSurfacePixelFormat format,
                 Int32 src_x, Int32 src_y, Int32 width, Int32 height, void* rows, int pitch)
{
    auto* row = static_cast<UInt8*>(rows);
    if (format == DSPF_LUT8) {
        const Int32 count = std::min(width, pitch);
        for (Int32 y = 0; y < height; ++y, row += pitch)
            pixels.Indices(src_x, src_y + y, count, row);
        return;
    }
    UInt32 palette[kColors] = {};
    for (int i = 0; IsIndexed(mode) && i < kColors; ++i) {
        const DFBColor color = ColorOfIndex(i);
        palette[i] = static_cast<UInt32>(color.a) << 24 | static_cast<UInt32>(color.r) << 16 |
                     static_cast<UInt32>(color.g) << 8 | color.b;
    }
    const Int32 count = std::min(width, pitch / 4);
    for (Int32 y = 0; y < height; ++y, row += pitch)
        pixels.Colors(src_x, src_y + y, count, palette, reinterpret_cast<UInt32*>(row));
}

} // namespace

bool Image::Part::CutAtPicture(Int32 picture_width, Int32 picture_height)
{
    const Int32 left = std::max(-src_x, 0);
    const Int32 top = std::max(-src_y, 0);
    width = std::min(width, picture_width - src_x) - left;
    height = std::min(height, picture_height - src_y) - top;
    x += left;
    src_x += left;
    y += top;
    src_y += top;
    return width > 0 && height > 0;
}

Image::Image()
    : _clip_x1(0), _clip_y1(0), _clip_x2(0), _clip_y2(0), _frame_count(0),
      _image_buffer_mode(UseFrameBuffer), _image_type(TypePNG), _width(0), _height(0),
      _color_mode(static_cast<ColorMode>(0)), _left(0), _top(0), _image_surface(nullptr),
      _filesize(0), _pCvt(nullptr), _mono_attr()
{
}

Image::Image(const char* file_name) : Image()
{
    Initialize(file_name);
}

Image::Image(ColorMode color_mode, MetricValue width, MetricValue height, PtrConstAny data,
             ImageBufferMode image_buffer_mode, ImageType image_type, DWORD datasize,
             Convert2DrawableRoutine_t pCvt, MonoGlyphAttr* pAttr)
    : Image()
{
    _color_mode = color_mode;
    _width = static_cast<UInt16>(std::max<MetricValue>(width, 0));
    _height = static_cast<UInt16>(std::max<MetricValue>(height, 0));
    _image_buffer_mode = image_buffer_mode;
    _image_type = image_type;
    _pCvt = pCvt;
    _frame_count = 1;
    if (image_type == TypeSurface)
        return;

    const auto* bytes = static_cast<const UInt8*>(data);
    if (color_mode == Color1Bit && pAttr)
        _mono_attr = *pAttr;
    if (color_mode == Color32Bit) {
        if (bytes)
            TakeColors(bytes, datasize, image_type);
    } else if (color_mode != Color1Bit && image_buffer_mode == UseFrameBuffer) {
        CreateFrame(bytes);
    } else if (bytes && CreateStorage()) {
        std::memcpy(_image_data.get(), bytes, PixelRowBytes(color_mode, _width) * _height);
    }
}

Image::~Image()
{
    Uninitialize();
}

int Image::Decode(const UInt8* buf_in, std::size_t len_in, UInt8* buf_out, std::size_t len_out)
{
    return DecodeStream(buf_in, len_in, buf_out, len_out).end == StreamEnd::Marker ? 1 : 0;
}

void Image::Initialize(const char* file_name)
{
    const File file(std::fopen(file_name, "rb"));
    UInt8 bytes[FileHeader::kSize] = {};
    if (!file || std::fread(bytes, 1, sizeof bytes, file.get()) != sizeof bytes)
        return;
    const FileHeader header(bytes);
    // Even the largest header's sizes fit in 64 bits.
    if (header.Size() == 0 || header.Size() > kMostImageBytes)
        return;
    const auto size = static_cast<std::size_t>(header.Size());
    const auto frame_size = static_cast<std::size_t>(header.FrameSize());
    std::size_t length = 0;
    const Bytes stream = ReadStream(file.get(), &length);
    const Bytes pixels = stream ? DecodeFrames(stream.get(), length, size) : nullptr;
    if (!pixels)
        return;

    _frames.reset(new FrameInfo[header.frames]);
    _frame_count = header.frames;
    _width = header.width;
    _height = header.height;
    for (int i = 0; i < _frame_count; ++i)
        LoadFrame(_frames[i], pixels.get() + i * frame_size, size - i * frame_size);
}

/**
 * Fills a surface in the display's format with a byte for each pixel, whatever the format. What
 * the bytes do not reach is zero.
 *
 * @param size  bytes from the frame's first one to the last frame's last one
 */
void Image::LoadFrame(FrameInfo& frame, const UInt8* pixels, std::size_t size)
{
    IDirectFBSurface* img_surf = CreateSurface(_width, _height, FormatOf(View::_primary));
    if (!img_surf)
        return;
    frame.surf = img_surf;
    DFBCHECK(img_surf->SetDrawingFlags(img_surf, DSDRAW_BLEND));
    void* surf_data = nullptr;
    int ret_pitch = 0;
    DFBCHECK(img_surf->Lock(img_surf, DSLF_WRITE, &surf_data, &ret_pitch));
    const auto pitch = static_cast<std::size_t>(ret_pitch);
    auto* row = static_cast<UInt8*>(surf_data);
    for (std::size_t y = 0; surf_data && y < _height; ++y, row += pitch) {
        // Rows follow one another by the width, also of pixels with fewer bits.
        const std::size_t offset = std::min(y * _width, size);
        const std::size_t count = std::min({std::size_t{_width}, pitch, size - offset});
        std::memcpy(row, pixels + offset, count);
        std::memset(row + count, 0, pitch - count);
    }
    DFBCHECK(img_surf->Unlock(img_surf));
}

/** Takes 32-bit pixels, or unpacks the picture file that they turn out to be. */
void Image::TakeColors(const UInt8* data, std::size_t size, ImageType image_type)
{
    Picture picture;
    const bool png = image_type == TypePNG && IsPng(data, size);
    if (png || (image_type == TypeJPG && IsJpeg(data, size))) {
        picture = png ? DecodePng(data, size) : DecodeJpeg(data, size);
        if (!picture.rgba)
            return;
        _width = static_cast<UInt16>(picture.width);
        _height = static_cast<UInt16>(picture.height);
        data = picture.rgba.get();
    }
    if (CreateStorage())
        TakeRgba(data, std::size_t{_width} * _height, reinterpret_cast<UInt32*>(_image_data.get()));
}

/** Makes the one frame of pixels that a client keeps in the frame buffer. */
void Image::CreateFrame(const UInt8* data)
{
    if (_width == 0 || _height == 0)
        return;
    const DFBSurfacePixelFormat format = IsIndexed(_color_mode) ? DSPF_LUT8 : DSPF_ARGB;
    IDirectFBSurface* img_surf = CreateSurface(_width, _height, format);
    if (!img_surf)
        return;
    if (format == DSPF_LUT8)
        LoadPalette(img_surf);
    void* surf_data = nullptr;
    int ret_pitch = 0;
    DFBCHECK(img_surf->Lock(img_surf, DSLF_WRITE, &surf_data, &ret_pitch));
    if (surf_data && data) {
        const PixelReader pixels(data, _color_mode, _width, _height, _mono_attr);
        ConvertRows(pixels, _color_mode, format, 0, 0, _width, _height, surf_data, ret_pitch);
    } else if (surf_data) {
        std::memset(surf_data, 0, static_cast<std::size_t>(ret_pitch) * _height);
    }
    DFBCHECK(img_surf->Unlock(img_surf));
    _frames.reset(new FrameInfo[1]);
    _frames[0] = {img_surf, kNoColorKey};
}

/** Makes room for the pixels, all zero; false when there are none or there is no memory. */
bool Image::CreateStorage()
{
    const std::size_t size = PixelRowBytes(_color_mode, _width) * _height;
    if (size != 0)
        _image_data.reset(new (std::nothrow) UInt8[size]());
    return _image_data != nullptr;
}

void Image::Uninitialize()
{
    for (int i = 0; _frames && i < _frame_count; ++i) {
        if (_frames[i].surf)
            _frames[i].surf->Release(_frames[i].surf);
    }
    _frames.reset();
    _frame_count = 0;
    _image_data.reset();
    if (_image_surface)
        _image_surface->Release(_image_surface);
    _image_surface = nullptr;
}

void Image::SetAttribute(Int32 nLeft, Int32 nTop)
{
    _left = nLeft;
    _top = nTop;
}

void Image::GetAttribute(Int32& nLeft, Int32& nTop)
{
    nLeft = _left;
    nTop = _top;
}

void Image::ImageClear(ColorMode color_mode, MetricValue x, MetricValue y, MetricValue w,
                       MetricValue h, ColorValue color, BlendValue blend)
{
    if (!HasFirstFrame())
        return;
    if (color_mode == Color32Bit) {
        // 0x00RRGGBB here, unlike a frame's colour key.
        DFBCHECK(_frames[0].surf->SetColor(_frames[0].surf, (color & 0xff0000) >> 16,
                                           (color & 0x00ff00) >> 8, color & 0x0000ff, (blend)));
    } else {
        DFBCHECK(_frames[0].surf->SetColorIndex(_frames[0].surf, color));
    }
    DFBCHECK(_frames[0].surf->FillRectangle(_frames[0].surf, x, y, w, h));
}

void Image::SetClipping(MetricValue left, MetricValue top, MetricValue right, MetricValue bottom)
{
    const bool empty = _width == 0 || _height == 0;
    _clip_x1 = std::max<Int32>(left, 0);
    _clip_y1 = std::max<Int32>(top, 0);
    _clip_x2 = empty ? 0 : std::min<Int32>(right, _width);
    _clip_y2 = empty ? 0 : std::min<Int32>(bottom, _height);
}

void Image::SetImageData(UInt32* imagedata, UInt32 row_bytes, MetricValue x, MetricValue y,
                         MetricValue width, MetricValue height, ColorMode colormode)
{
    if (_image_type == TypeSurface || !imagedata)
        return;
    _clip_x1 = _clip_y1 = _clip_x2 = _clip_y2 = 0;
    SetClipping(x, y, Wrap(x + width), Wrap(y + height));
    if (_clip_x1 >= _clip_x2 || _clip_y1 >= _clip_y2)
        return;

    const std::size_t pixel_size = colormode == Color8Bit ? 1 : 4;
    const std::size_t skipped = (_clip_x1 - x) * pixel_size;
    if (skipped >= row_bytes)
        return;
    const UInt8* from = reinterpret_cast<UInt8*>(imagedata) +
                        static_cast<std::size_t>(_clip_y1 - y) * row_bytes + skipped;
    const std::size_t count =
        std::min((_clip_x2 - _clip_x1) * pixel_size, std::size_t{row_bytes} - skipped);
    if (!HasFirstFrame()) {
        if (_image_data || CreateStorage())
            StorePart(_image_data.get(), PixelRowBytes(_color_mode, _width), from, row_bytes,
                      pixel_size, count);
        return;
    }
    void* surf_data = nullptr;
    int ret_pitch = 0;
    DFBCHECK(_frames[0].surf->Lock(_frames[0].surf, DSLF_WRITE, &surf_data, &ret_pitch));
    if (surf_data)
        StorePart(static_cast<UInt8*>(surf_data), static_cast<std::size_t>(ret_pitch), from,
                  row_bytes, pixel_size, count);
    DFBCHECK(_frames[0].surf->Unlock(_frames[0].surf));
}

/**
 * Copies rows of a client's pixels to the rows of the clip rectangle.
 *
 * @param pitch  bytes from one row of the image to the next; no row gets more
 * @param count  bytes to be taken of each of the client's rows
 */
void Image::StorePart(UInt8* pixels, std::size_t pitch, const UInt8* from, std::size_t row_bytes,
                      std::size_t pixel_size, std::size_t count) const
{
    const std::size_t left = _clip_x1 * pixel_size;
    if (left >= pitch)
        return;
    count = std::min(count, pitch - left);
    for (Int32 y = _clip_y1; y < _clip_y2; ++y, from += row_bytes)
        std::memcpy(pixels + pitch * y + left, from, count);
}

void Image::PaintToSurface(IDirectFBSurface* surface, UInt16 frame, MetricValue x, MetricValue y,
                           MetricValue width, MetricValue height, MetricValue src_x,
                           MetricValue src_y, BlendMode blend_mode)
{
    const Part part = {x, y, width, height, src_x, src_y};
    if (_pCvt)
        PaintData(surface, static_cast<const UInt8*>(_pCvt(this, _image_data.get())), part,
                  blend_mode);
    else if (frame >= _frame_count)
        return;
    else if (_frames)
        PaintFrame(surface, &_frames[frame], part);
    else
        PaintData(surface, _image_data.get(), part, blend_mode);
}

void Image::PaintFrame(IDirectFBSurface* surface, const FrameInfo* info, Part part)
{
    if (!info->surf)
        return;
    if (info->colorkey != kNoColorKey) {
        DFBCHECK(info->surf->SetSrcColorKey(info->surf, info->colorkey & 0xff,
                                            (info->colorkey & 0xff00) >> 8,
                                            (info->colorkey & 0xff0000) >> 16));
    }
    // DirectFB fails where there is nothing to copy.
    if (!part.CutAtPicture(_width, _height))
        return;
    const DFBRectangle rect = {part.src_x, part.src_y, part.width, part.height};
    const int x = part.x;
    const int y = part.y;
    DFBCHECK(surface->Blit(surface, info->surf, &rect, x, y));
}

/** Draws pixels in the image's own mode; a conversion routine may have made them. */
void Image::PaintData(IDirectFBSurface* surface, const UInt8* data, Part part, BlendMode blend_mode)
{
    if (!data)
        return;
    if (blend_mode == BlendSrcCopy && _color_mode == Color1Bit)
        KESTRIN_LOG(kLogInformation,
                    "==(blend_mode == BlendSrcCopy) && pDrawData && _color_mode == Color1Bit==\n");
    const PixelReader pixels(data, _color_mode, _width, _height, _mono_attr);
    if (!part.CutAtPicture(pixels.Width(), pixels.Height()))
        return;
    const bool indices = IsIndexed(_color_mode) && FormatOf(surface) == DSPF_LUT8;
    if (indices && _color_mode == Color8Bit && blend_mode == BlendSrcCopy) {
        WriteIndices(surface, pixels, part);
        return;
    }
    IDirectFBSurface* img_surf = FilledScratch(pixels, part, indices ? DSPF_LUT8 : DSPF_ARGB);
    if (!img_surf)
        return;
    const int x = part.x;
    const int y = part.y;
    if (indices && blend_mode == BlendSrcOver8BIT) {
        MHEG_draw_bitmap(surface, x, y, part.width, part.height, img_surf, 0, 0);
        return;
    }
    const DFBRectangle rect = {0, 0, part.width, part.height};
    DFBCHECK(surface->Blit(surface, img_surf, &rect, x, y));
}

/** Writes palette indices into a surface, cut at the surface and not at its clip rectangle. */
void Image::WriteIndices(IDirectFBSurface* surface, const PixelReader& pixels, const Part& part)
{
    int room_x = 0;
    int room_y = 0;
    surface->GetSize(surface, &room_x, &room_y);
    const Int32 left = std::max(-part.x, 0);
    const Int32 right = std::min(part.width, room_x - part.x);
    const Int32 top = std::max(-part.y, 0);
    const Int32 bottom = std::min(part.height, room_y - part.y);
    if (left >= right || top >= bottom)
        return;
    void* surf_data = nullptr;
    int ret_pitch = 0;
    DFBCHECK(surface->Lock(surface, DSLF_WRITE, &surf_data, &ret_pitch));
    for (Int32 row = top; surf_data && row < bottom; ++row) {
        UInt8* to = static_cast<UInt8*>(surf_data) + std::ptrdiff_t{ret_pitch} * (part.y + row);
        pixels.Indices(part.src_x + left, part.src_y + row, right - left, to + part.x + left);
    }
    DFBCHECK(surface->Unlock(surface));
}

/** The scratch surface, in a format and not smaller than a part, with the part's pixels. */
IDirectFBSurface* Image::FilledScratch(const PixelReader& pixels, const Part& part,
                                       DFBSurfacePixelFormat format)
{
    PrepareScratch(part.width, part.height, format);
    IDirectFBSurface* img_surf = _image_surface;
    if (!img_surf)
        return nullptr;
    void* surf_data = nullptr;
    int ret_pitch = 0;
    DFBCHECK(img_surf->Lock(img_surf, DSLF_WRITE, &surf_data, &ret_pitch));
    if (surf_data)
        ConvertRows(pixels, _color_mode, format, part.src_x, part.src_y, part.width, part.height,
                    surf_data, ret_pitch);
    DFBCHECK(img_surf->Unlock(img_surf));
    DFBCHECK(img_surf->SetSrcColorKey(img_surf, 0, 0, 0));
    return surf_data ? img_surf : nullptr;
}

/** Keeps the scratch surface that there is, or makes one that is not smaller. */
void Image::PrepareScratch(int width, int height, DFBSurfacePixelFormat format)
{
    if (_image_surface && FormatOf(_image_surface) == format) {
        int room_x = 0;
        int room_y = 0;
        _image_surface->GetSize(_image_surface, &room_x, &room_y);
        if (width <= room_x && height <= room_y)
            return;
        width = std::max(width, room_x);
        height = std::max(height, room_y);
    }
    if (_image_surface)
        _image_surface->Release(_image_surface);
    _image_surface = CreateSurface(width, height, format);
    if (IDirectFBSurface* img_surf = _image_surface)
        DFBCHECK(img_surf->SetDrawingFlags(img_surf, DSDRAW_BLEND));
}

IImage* zelCreateImage(ColorMode color_mode, MetricValue width, MetricValue height,
                       PtrConstAny data, ImageBufferMode image_buffer_mode, ImageType image_type,
                       DWORD datasize, Convert2DrawableRoutine_t pCvt, MonoGlyphAttr* pAttr)
{
    return new Image(color_mode, width, height, data, image_buffer_mode, image_type, datasize, pCvt,
                     pAttr);
}

IImage* zelCreateImage(const char* file_name)
{
    auto* image = new Image(file_name);
    if (!image->IsAvailable()) {
        delete image;
        return nullptr;
    }
    return image;
}

} // namespace zelxxx
