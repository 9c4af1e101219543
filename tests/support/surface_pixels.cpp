#include "surface_pixels.h"

#include "pixel_bytes.h"

#include <cstdint>
#include <stdexcept>

namespace kestrin_test {

using kestrin_display::ArgbImage;

namespace {

void Require(DFBResult result)
{
    if (result != DFB_OK)
        throw std::runtime_error(DirectFBErrorString(result));
}

/** A locked surface of four bytes or one byte a pixel. */
class Locked
{
public:
    Locked(IDirectFBSurface* surface, DFBSurfaceLockFlags flags) : _surface(surface)
    {
        DFBSurfacePixelFormat format = DSPF_UNKNOWN;
        Require(surface->GetPixelFormat(surface, &format));
        Require(surface->GetSize(surface, &width, &height));
        if (format != DSPF_ARGB && format != DSPF_LUT8)
            throw std::logic_error("neither ARGB nor LUT8");
        _bytes = format == DSPF_ARGB ? 4 : 1;
        Require(surface->Lock(surface, flags, &_data, &_pitch));
    }
    ~Locked() { _surface->Unlock(_surface); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

    std::uint32_t Read(int x, int y) const
    {
        return kestrin_display::LoadPixel(Address(x, y), _bytes);
    }
    void Write(int x, int y, std::uint32_t value)
    {
        kestrin_display::StorePixel(Address(x, y), value, _bytes);
    }

    int width = 0;
    int height = 0;

private:
    unsigned char* Address(int x, int y) const
    {
        return static_cast<unsigned char*>(_data) + std::ptrdiff_t{y} * _pitch +
               std::ptrdiff_t{x} * static_cast<std::ptrdiff_t>(_bytes);
    }

    IDirectFBSurface* _surface;
    void* _data = nullptr;
    int _pitch = 0;
    std::size_t _bytes = 0;
};

} // namespace

ArgbImage PixelsOf(IDirectFBSurface* surface)
{
    const Locked pixels(surface, DSLF_READ);
    ArgbImage image(pixels.width, pixels.height);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x)
            image.At(x, y) = pixels.Read(x, y);
    }
    return image;
}

void SetPixels(IDirectFBSurface* surface, const ArgbImage& image)
{
    Locked pixels(surface, DSLF_WRITE);
    if (image.width != pixels.width || image.height != pixels.height)
        throw std::logic_error("the picture has another size");
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x)
            pixels.Write(x, y, image.At(x, y));
    }
}

ArgbImage PartOf(const ArgbImage& image, int x, int y, int width, int height)
{
    ArgbImage part(width, height);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column)
            part.At(column, row) = image.At(x + column, y + row);
    }
    return part;
}

} // namespace kestrin_test
