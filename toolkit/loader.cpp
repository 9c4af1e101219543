#include "vrel_kestrin_loader.h"

#include "color_match_p.h"
#include "picture_file_p.h"

#include <memory>
#include <new>
#include <string>

namespace zelxxx {

namespace {

constexpr std::size_t kPaletteBytes = 1024;
constexpr std::size_t kBytesPerColor = 4;

class ImageLoader : public ZELObject<IImageLoader, ImageLoader>
{
public:
    bool Open(const char* file_name) override;
    bool OpenPalette(const char* file_name) override;
    void SetDisplayPalette(IPalette* palette) override { _display_palette = palette; }
    UInt16 GetWidth() override { return static_cast<UInt16>(_picture.width); }
    UInt16 GetHeight() override { return static_cast<UInt16>(_picture.height); }
    int GetFrameCount() override { return static_cast<int>(_picture.frames); }
    IImage* CreateImage(ColorMode display_mode, int frame) override;
    const char* GetError() override { return _error.c_str(); }

private:
    bool Succeeded(const char* file_name, const std::string& problem);
    Rgba ColorAt(std::size_t pixel) const;
    IImage* MakeImage(ColorMode mode, const UInt8* pixels) const;
    IImage* MakeColors(std::size_t first);
    IImage* MakeIndices(std::size_t first);

    PictureFile _picture;
    std::string _name;
    std::string _error;
    std::unique_ptr<Colors> _palette; /**< of the indices; null for the display's */
    PPalette _display_palette;
};

/** Keeps what there is to say of a file. */
bool ImageLoader::Succeeded(const char* file_name, const std::string& problem)
{
    if (problem.empty())
        return true;
    _error = std::string(file_name) + ": " + problem;
    return false;
}

bool ImageLoader::Open(const char* file_name)
{
    _picture = PictureFile();
    _name = file_name;
    FileContent file;
    std::string problem = ReadWholeFile(file_name, &file);
    if (problem.empty())
        problem = UnpackPicture(file, &_picture);
    return Succeeded(file_name, problem);
}

bool ImageLoader::OpenPalette(const char* file_name)
{
    if (!file_name) {
        _palette.reset();
        return true;
    }
    FileContent file;
    std::string problem = ReadWholeFile(file_name, &file);
    if (problem.empty() && file.size != kPaletteBytes)
        problem = "has " + std::to_string(file.size) + " bytes; a palette file has " +
                  std::to_string(kPaletteBytes);
    if (!Succeeded(file_name, problem))
        return false;
    _palette.reset(new Colors);
    const UInt8* record = file.bytes.get();
    for (Rgba& color : *_palette) {
        color = {record[1], record[2], record[3], record[0]};
        record += kBytesPerColor;
    }
    return true;
}

/** A pixel, counted through all frames, of a picture whose colours are known. */
Rgba ImageLoader::ColorAt(std::size_t pixel) const
{
    if (_picture.indexed)
        return (*_palette)[_picture.pixels[pixel]];
    const UInt8* bytes = _picture.pixels.get() + pixel * kBytesPerColor;
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

IImage* ImageLoader::MakeImage(ColorMode mode, const UInt8* pixels) const
{
    IImage* image = zelCreateImage(mode, static_cast<MetricValue>(_picture.width),
                                   static_cast<MetricValue>(_picture.height), pixels,
                                   UseSystemMemory, TypeImg, 0, nullptr, nullptr);
    // The engine makes an image without pixels when it finds no room for them.
    if (!image->GetImageBuffer()) {
        delete image;
        return nullptr;
    }
    return image;
}

IImage* ImageLoader::MakeColors(std::size_t first)
{
    const std::size_t count = _picture.FramePixels();
    const std::unique_ptr<UInt8[]> bytes(new (std::nothrow) UInt8[count * kBytesPerColor]);
    if (!bytes)
        return nullptr;
    UInt8* to = bytes.get();
    for (std::size_t i = 0; i < count; ++i) {
        const Rgba color = ColorAt(first + i).Premultiplied();
        for (const UInt8 channel : {color.r, color.g, color.b, color.a})
            *to++ = channel;
    }
    return MakeImage(Color32Bit, bytes.get());
}

IImage* ImageLoader::MakeIndices(std::size_t first)
{
    const std::size_t count = _picture.FramePixels();
    const std::unique_ptr<UInt8[]> indices(new (std::nothrow) UInt8[count]);
    if (!indices)
        return nullptr;
    const PPalette current = zelGetCurrentPalette();
    ColorMatch match(_display_palette ? _display_palette : current);
    for (std::size_t i = 0; i < count; ++i)
        indices[i] = match.IndexOf(ColorAt(first + i));
    return MakeImage(Color8Bit, indices.get());
}

IImage* ImageLoader::CreateImage(ColorMode display_mode, int frame)
{
    if (!_picture.pixels) {
        // What Open had to say of the file stays.
        if (_name.empty())
            _error = "no picture has been opened";
        return nullptr;
    }
    if (frame < 0 || frame >= GetFrameCount()) {
        Succeeded(_name.c_str(), "has no frame " + std::to_string(frame) + "; there are " +
                                     std::to_string(GetFrameCount()));
        return nullptr;
    }
    const std::size_t first = frame * _picture.FramePixels();
    IImage* image = nullptr;
    if (_picture.indexed && !_palette)
        image = MakeImage(Color8Bit, _picture.pixels.get() + first);
    else
        image = display_mode == Color8Bit ? MakeIndices(first) : MakeColors(first);
    if (!image)
        Succeeded(_name.c_str(), "there is not enough memory for an image of it");
    return image;
}

} // namespace

IImageLoader* zelCreateImageLoader()
{
    return new ImageLoader;
}

} // namespace zelxxx
