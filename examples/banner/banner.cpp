/**
 * A channel's banner: logo, programme, progress, weather and what comes next.
 *
 *     banner DIRECTORY 8|32 STEPS
 *
 * The directory has the pictures: PNG files for a display of 32 bits, image files and banner.pal
 * for one of 8 bits, as scripts/demo makes them. Each step turns the icon and moves the bar.
 */
#include "vrel_kestrin_flow.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

using namespace zelxxx;

namespace {

constexpr int icon_frames = 16;

struct Colour
{
    int red, green, blue;

    AttrValue LowRed() const { return blue << 16 | green << 8 | red; }
    static Colour Of(ColorValue low_red)
    {
        return {static_cast<UInt8>(low_red), static_cast<UInt8>(low_red >> 8),
                static_cast<UInt8>(low_red >> 16)};
    }
};

constexpr Colour white = {255, 255, 255};
constexpr Colour pale = {169, 193, 230};
constexpr Colour amber = {255, 181, 74};
/** What text stands on. */
constexpr Colour ground = {16, 32, 60};

/**
 * The index of the palette's nearest opaque colour, of those that 8-bit drawing puts down as they
 * are: the first 48 and index 0 stand for colours of the fixed palette that let the ground through.
 */
UInt8 Nearest(const Colour& colour)
{
    IPalette* palette = zelGetCurrentPalette();
    int best = 49, least = 4 * 255 * 255;
    for (int i = 49; palette && i < 256; ++i) {
        const auto index = static_cast<UInt8>(i);
        const int red = palette->GetColorRed(index) - colour.red;
        const int green = palette->GetColorGreen(index) - colour.green;
        const int blue = palette->GetColorBlue(index) - colour.blue;
        const int distance = red * red + green * green + blue * blue;
        if (palette->GetColorBlending(index) == 255 && distance < least) {
            least = distance;
            best = i;
        }
    }
    return static_cast<UInt8>(best);
}

/**
 * Text on the banner. The edges of its glyphs fade into the ground in the colours of the banner's
 * own palette; by itself the formatter knows the engine's only.
 */
class BannerFormatter : public FlowFormatter
{
public:
    using FlowFormatter::FlowFormatter;

    void GetCharBuffer(const CharMetrics* glyph, ColorValue colour, BlendValue,
                       PtrSChar buffer) override
    {
        if (!glyph->buffer)
            return;
        const auto known = _ramps.find(colour);
        const Ramp& ramp = known != _ramps.end()
                               ? known->second
                               : _ramps.emplace(colour, MakeRamp(Colour::Of(colour))).first->second;
        for (int i = 0; i < glyph->width * glyph->height; ++i)
            buffer[i] = static_cast<SChar>(ramp[glyph->buffer[i]]);
    }

private:
    using Ramp = std::array<UInt8, 256>;

    /** From the ground's colour to the text's; coverage that is hardly seen draws nothing. */
    static Ramp MakeRamp(const Colour& colour)
    {
        constexpr int least = 24;
        Ramp ramp = {};
        for (int i = least; i < 256; ++i) {
            const auto mixed = [=](int from, int to) { return from + (to - from) * i / 255; };
            ramp[static_cast<std::size_t>(i)] =
                Nearest({mixed(ground.red, colour.red), mixed(ground.green, colour.green),
                         mixed(ground.blue, colour.blue)});
        }
        return ramp;
    }

    std::map<ColorValue, Ramp> _ramps;
};

template <class Widget>
void Place(Widget& widget, int x, int y, int width, int height)
{
    widget->SetAttribute(AttrPosX, x);
    widget->SetAttribute(AttrPosY, y);
    widget->SetAttribute(AttrSpanX, width);
    widget->SetAttribute(AttrSpanY, height);
}

std::string ReadFile(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    if (!file)
        throw std::runtime_error(name + ": cannot be read; scripts/demo makes it");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class Banner
{
public:
    Banner(const std::string& directory, ColorMode mode)
        : _directory(directory), _mode(mode),
          _scene(zelCreateScene(0, 1280, 720, mode, SceneUseDoubleBuffer,
                                mode == Color8Bit ? BlendSrcOver8BIT : BlendSrcOver)),
          _layer(zelCreateLayer(nullptr)), _fonts(OpenFonts())
    {
        if (mode == Color8Bit)
            LoadPalette();
        _scene->AddLayer(_layer);
        LoadIcon();
        AddSprite(Load("tile"), 64, 476, 1152, 180)
            ->SetAttribute(AttrImageFormat, ImageAlignTiling);
        AddSprite(Load("tile"), 1072, 44, 144, 60)->SetAttribute(AttrImageFormat, ImageAlignTiling);
        AddRectangle(amber, 64, 472, 1152, 4);
        AddSprite(Load("logo"), 86, 496, 140, 140);
        AddPhoto();
        _icon = AddSprite(_icons.front(), 802, 492, 96, 88);
        AddTexts();
        AddRectangle({52, 72, 112}, 256, 586, 500, 6);
        _bar = AddRectangle(amber, 256, 586, 0, 6);
    }

    /** Shows the banner as it is at a step, counted from 0. */
    void Show(int step)
    {
        const int frame = step % icon_frames;
        if (_mode == Color8Bit)
            _icon->SetAttribute(AttrImageFrame, frame);
        else
            _icon->SetImage(_icons[static_cast<std::size_t>(frame)]);
        _bar->SetAttribute(AttrSpanX, 300 + step * 2);
        zelUpdateScreen(step == 0, false);
    }

private:
    /** The fonts of an index file; without a directory of its own it takes their names as given. */
    static IResource* OpenFonts()
    {
        const char index[] = "banner-fonts";
        std::ofstream(index) << "2\nfnt:/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf\n"
                                "fnt:/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf\n";
        IResource* fonts = zelOpenResource(index);
        std::remove(index);
        return fonts;
    }

    void LoadPalette()
    {
        const std::string file = _directory + "/banner.pal";
        ReadFile(file);
        const ZELObjPtr<IPalette> palette(zelCreatePalette(file.c_str()));
        _scene->SetPalette(palette, 256, 256, 256);
    }

    /** Image files are for 8-bit displays; others take PNG files from memory. */
    PImage Load(const std::string& name) const
    {
        const std::string file = _directory + "/" + name + (_mode == Color8Bit ? ".img" : ".png");
        const std::string bytes = ReadFile(file);
        PImage image(_mode == Color8Bit
                         ? zelCreateImage(file.c_str())
                         : zelCreateImage(Color32Bit, 0, 0, bytes.data(), UseSystemMemory, TypePNG,
                                          static_cast<DWORD>(bytes.size()), nullptr, nullptr));
        if (!image || image->GetWidth() == 0)
            throw std::runtime_error(file + ": has no picture");
        return image;
    }

    void LoadIcon()
    {
        if (_mode == Color8Bit) {
            _icons.push_back(Load("icon"));
            return;
        }
        for (int i = 0; i < icon_frames; ++i)
            _icons.push_back(
                Load(i < 10 ? "icon-0" + std::to_string(i) : "icon-" + std::to_string(i)));
    }

    ZELObjPtr<ISprite> AddSprite(const PImage& image, int x, int y, int width, int height)
    {
        ZELObjPtr<ISprite> sprite(zelCreateSprite(nullptr));
        sprite->SetImage(image);
        Place(sprite, x, y, width, height);
        _layer->AddWidget(sprite);
        return sprite;
    }

    AttrValue ValueOf(const Colour& colour) const
    {
        return _mode == Color8Bit ? Nearest(colour) : colour.LowRed();
    }

    ZELObjPtr<IWidget> AddRectangle(const Colour& colour, int x, int y, int width, int height)
    {
        ZELObjPtr<IWidget> rectangle(zelCreateRectangle(nullptr));
        Place(rectangle, x, y, width, height);
        rectangle->SetAttribute(AttrColor, ValueOf(colour));
        _layer->AddWidget(rectangle);
        return rectangle;
    }

    void AddPhoto()
    {
        AddRectangle(white, 934, 490, 260, 148);
        AddSprite(Load("photo"), 936, 492, 256, 144)->SetAttribute(AttrBlendMode, BlendSrcCopy);
    }

    void AddText(const Colour& colour, TextFormat side, const std::string& words, int font,
                 int size, int x, int y, int width)
    {
        const ZELObjPtr<IText> text(zelCreateText(_fonts));
        Place(text, x, y, width, size * 3 / 2);
        text->SetAttribute(AttrFontIndex, font);
        text->SetAttribute(AttrFontSize, size);
        text->SetAttribute(AttrTextFormat, side);
        text->SetAttribute(AttrColor, ValueOf(colour));
        text->SetText(words.data(), static_cast<UInt32>(words.size()), EncodingUTF8, &_formatter);
        _layer->AddWidget(text);
    }

    void AddTexts()
    {
        constexpr int regular = 1, bold = 2;
        constexpr TextFormat left = TextAlignLeft, middle = TextAlignCenter;
        AddText(white, left, "Lakes of the North", bold, 42, 256, 490, 530);
        AddText(pale, left, "20:15 – 21:00   Nature film, part 2 of 4", regular, 24, 256, 547, 530);
        AddText(amber, left, "Next", bold, 24, 256, 608, 80);
        AddText(white, left, "21:00   Winter Nights", regular, 24, 336, 608, 450);
        AddText(white, middle, "14 °C", bold, 28, 786, 585, 128);
        AddText(pale, middle, "Inari", regular, 22, 786, 619, 128);
        AddText(white, middle, "20:42", bold, 34, 1072, 51, 144);
    }

    const std::string _directory;
    const ColorMode _mode;
    BannerFormatter _formatter{_mode}; // outlives the texts
    ZELObjPtr<IScene> _scene;
    PLayer _layer;
    PResource _fonts;
    std::vector<PImage> _icons;
    ZELObjPtr<ISprite> _icon;
    ZELObjPtr<IWidget> _bar;
};

} // namespace

int main(int argc, char** argv)
{
    const int bits = argc == 4 ? std::atoi(argv[2]) : 0;
    const int steps = argc == 4 ? std::atoi(argv[3]) : 0;
    if ((bits != 8 && bits != 32) || steps < 1) {
        std::fprintf(stderr, "Usage: banner DIRECTORY 8|32 STEPS\n");
        return 2;
    }
    const ColorMode mode = bits == 8 ? Color8Bit : Color32Bit;
    int status = 0;
    zelInitialize(1280, 720, static_cast<UInt8>(mode));
    try {
        Banner banner(argv[1], mode);
        for (int step = 0; step < steps; ++step)
            banner.Show(step);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "banner: %s\n", error.what());
        status = 1;
    }
    zelUninitialize();
    return status;
}
