#include "movie.h"

#include <memory>

#include <gif_lib.h>

namespace kestrin_test {

using kestrin_display::ArgbImage;

namespace {

/** Lays a frame of the file over what is shown; its transparent pixels change nothing. */
void Draw(const SavedImage& saved, const ColorMapObject& colors, int transparent, ArgbImage& shown)
{
    const GifImageDesc& place = saved.ImageDesc;
    for (int y = 0; y < place.Height; ++y) {
        for (int x = 0; x < place.Width; ++x) {
            const GifByteType index = saved.RasterBits[y * place.Width + x];
            const GifColorType& color = colors.Colors[index];
            if (index != transparent)
                shown.At(place.Left + x, place.Top + y) =
                    0xff000000U | static_cast<std::uint32_t>(color.Red) << 16 |
                    static_cast<std::uint32_t>(color.Green) << 8 | color.Blue;
        }
    }
}

} // namespace

Movie ReadMovie(const std::string& path)
{
    Movie movie;
    int error = 0;
    const std::unique_ptr<GifFileType, void (*)(GifFileType*)> gif(
        DGifOpenFileName(path.c_str(), &error), [](GifFileType* file) {
            if (file)
                DGifCloseFile(file, nullptr);
        });
    if (!gif || DGifSlurp(gif.get()) != GIF_OK)
        return movie;
    ArgbImage shown(gif->SWidth, gif->SHeight);
    for (int i = 0; i < gif->ImageCount; ++i) {
        const SavedImage& saved = gif->SavedImages[i];
        GraphicsControlBlock control = {};
        DGifSavedExtensionToGCB(gif.get(), i, &control);
        Draw(saved, *gif->SColorMap, control.TransparentColor, shown);
        movie.frames.push_back(shown);
        movie.hundredths.push_back(control.DelayTime);
        for (int e = 0; e < saved.ExtensionBlockCount; ++e) {
            const ExtensionBlock& block = saved.ExtensionBlocks[e];
            const auto* bytes = reinterpret_cast<const char*>(block.Bytes);
            movie.repeats |=
                std::string(bytes, static_cast<std::size_t>(block.ByteCount)) == "NETSCAPE2.0";
        }
    }
    return movie;
}

} // namespace kestrin_test
