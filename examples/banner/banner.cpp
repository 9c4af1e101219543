/**
 * A channel's banner: logo, programme, progress, weather and what comes next.
 *
 *     banner DIRECTORY 8|32 STEPS
 *
 * The directory has the pictures: PNG files for a display of 32 bits, image files and banner.pal
 * for one of 8 bits, as scripts/demo makes them. Each step turns the icon and moves the bar.
 */
#include "vrel_kestrin_graphic.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

using namespace zelxxx;

namespace {

constexpr int icon_frames = 16;

struct Colour
{
    int red, green, blue;

    ColorValue LowRed() const { return static_cast<ColorValue>(blue << 16 | green << 8 | red); }
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

/** One line from the widget's top left corner, or in the middle of its top. */
class OneLine : public ITextFormater
{
public:
    OneLine(const Colour& colour, ColorMode mode, bool centred = false)
        : _colour(colour), _mode(mode), _centred(centred)
    {
    }

    void Format(IText* text, PtrWChar units, UInt32 length) override
    {
        IFont* font = text->GetFont();
        if (!font)
            return;
        const auto size = static_cast<UInt16>(text->GetAttribute(AttrFontSize));
        const auto pixels = [&](Int32 pen) {
            return font->NoScaleFontUnitsToPixelsInCalculate(pen, 100, 100);
        };
        Int32 width = 0;
        for (UInt32 i = 0; i < length; ++i)
            width += font->GetFTNoScaleCharMetricsX(units[i], size, FontRegular);
        const Int32 left =
            _centred ? (text->GetAttribute(AttrSpanX) - pixels(width)) / 2 : Int32{0};

        if (_mode == Color8Bit)
            text->AddColorIndex(Nearest(_colour));
        else
            text->AddColorInfo(static_cast<UInt8>(_colour.red), static_cast<UInt8>(_colour.green),
                               static_cast<UInt8>(_colour.blue), 255);
        Int32 pen = 0;
        for (UInt32 i = 0; i < length; ++i) {
            text->AddCharInfo(static_cast<Int16>(left + pixels(pen)), 0, 0, units[i]);
            pen += font->GetFTNoScaleCharMetricsX(units[i], size, FontRegular);
        }
    }

    void GetCharBuffer(const CharMetrics* glyph, ColorValue, BlendValue, PtrSChar buffer) override
    {
        if (!glyph->buffer)
            return;
        if (!_ramp_made)
            MakeRamp();
        for (int i = 0; i < glyph->width * glyph->height; ++i)
            buffer[i] = static_cast<SChar>(_ramp[glyph->buffer[i]]);
    }

private:
    /** From the ground's colour to the text's; coverage that is hardly seen draws nothing. */
    void MakeRamp()
    {
        constexpr int least = 24;
        for (int i = least; i < 256; ++i) {
            const auto mixed = [=](int from, int to) { return from + (to - from) * i / 255; };
            _ramp[static_cast<std::size_t>(i)] =
                Nearest({mixed(ground.red, _colour.red), mixed(ground.green, _colour.green),
                         mixed(ground.blue, _colour.blue)});
        }
        _ramp_made = true;
    }

    const Colour _colour;
    const ColorMode _mode;
    const bool _centred;
    std::array<UInt8, 256> _ramp = {};
    bool _ramp_made = false;
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

    ZELObjPtr<IWidget> AddRectangle(const Colour& colour, int x, int y, int width, int height)
    {
        ZELObjPtr<IWidget> rectangle(zelCreateRectangle(nullptr));
        Place(rectangle, x, y, width, height);
        rectangle->SetAttribute(
            AttrColor,
            static_cast<AttrValue>(_mode == Color8Bit ? Nearest(colour) : colour.LowRed()));
        _layer->AddWidget(rectangle);
        return rectangle;
    }

    void AddPhoto()
    {
        AddRectangle(white, 934, 490, 260, 148);
        AddSprite(Load("photo"), 936, 492, 256, 144)->SetAttribute(AttrBlendMode, BlendSrcCopy);
    }

    void AddText(OneLine& line, const std::string& words, int font, int size, int x, int y,
                 int width)
    {
        const ZELObjPtr<IText> text(zelCreateText(_fonts));
        Place(text, x, y, width, size * 3 / 2);
        text->SetAttribute(AttrFontIndex, font);
        text->SetAttribute(AttrFontSize, size);
        text->SetText(words.data(), static_cast<UInt32>(words.size()), EncodingUTF8, &line);
        _layer->AddWidget(text);
    }

    void AddTexts()
    {
        constexpr int regular = 1, bold = 2;
        AddText(_title, "Lakes of the North", bold, 42, 256, 484, 530);
        AddText(_detail, "20:15 – 21:00   Nature film, part 2 of 4", regular, 24, 256, 543, 530);
        AddText(_accent, "Next", bold, 24, 256, 605, 80);
        AddText(_title, "21:00   Winter Nights", regular, 24, 336, 605, 450);
        AddText(_middle, "14 °C", bold, 28, 786, 582, 128);
        AddText(_middle_detail, "Inari", regular, 22, 786, 615, 128);
        AddText(_middle, "20:42", bold, 34, 1072, 48, 144);
    }

    const std::string _directory;
    const ColorMode _mode;
    OneLine _title{white, _mode}, _detail{pale, _mode}, _accent{amber, _mode};
    OneLine _middle{white, _mode, true}, _middle_detail{pale, _mode, true};
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
