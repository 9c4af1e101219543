#include "screen.h"

#include "display_setup.h"
#include "png_file.h"
#include "screen_reader.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kestrin_examples {

using namespace zelxxx;

namespace {

constexpr char kFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

/** The engine's layer of the display. */
constexpr int kLayer = 1;

std::string BytesOf(const char* name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

Screen::Screen(std::string picture_folder, MetricValue screen_width, MetricValue screen_height)
    : width(screen_width), height(screen_height), folder(std::move(picture_folder)),
      _file(folder + "/.screen"), _font(BytesOf(kFont))
{
    if (_font.empty())
        throw std::runtime_error(std::string(kFont) + " cannot be read; scripts/setup installs it");
    std::filesystem::create_directories(folder);
    if (kestrin_display::UseScreenFile(_file, width, height) !=
        kestrin_display::SetupResult::Applied)
        throw std::runtime_error("DFBARGS chooses the display; unset it to have pictures");
    zelInitialize(width, height, Color32Bit);
    _fonts = zelOpenResource("DejaVu Sans", _font.data(), static_cast<int>(_font.size()));
    _formatter = std::make_unique<FlowFormatter>(Color32Bit);
}

Screen::~Screen()
{
    _formatter = nullptr; // its layouts hold the font
    _fonts = nullptr;
    zelUninitialize();
    std::error_code ignored;
    std::filesystem::remove(_file, ignored);
}

kestrin_display::ArgbImage Screen::Update()
{
    // The first update is forced, so that the background is painted too.
    zelUpdateScreen(!_complete, true);
    _complete = true;
    return kestrin_display::ScreenReader(_file).Snapshot(kLayer).image;
}

void Screen::Picture(const std::string& name)
{
    const std::string path = folder + "/" + name + ".png";
    kestrin_tools::WritePng(path, Update());
    std::printf("%s\n", path.c_str());
}

int RunExample(int argc, char** argv, void (*show)(Screen& screen), MetricValue width,
               MetricValue height)
{
    try {
        const std::string name = std::filesystem::path(argv[0]).filename();
        Screen screen(argc > 1 ? argv[1] : name, width, height);
        show(screen);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 1;
    }
}

void Place(IWidget* widget, int x, int y, int width, int height)
{
    widget->SetAttribute(AttrPosX, x);
    widget->SetAttribute(AttrPosY, y);
    widget->SetAttribute(AttrSpanX, width);
    widget->SetAttribute(AttrSpanY, height);
}

ZELObjPtr<IWidget> AddBox(ILayer* layer, int x, int y, int width, int height, ColorValue color,
                          int opacity)
{
    ZELObjPtr<IWidget> box(zelCreateRectangle(nullptr));
    Place(box, x, y, width, height);
    box->SetAttribute(AttrColor, static_cast<AttrValue>(color));
    box->SetAttribute(AttrBlend, opacity);
    layer->AddWidget(box);
    return box;
}

ZELObjPtr<IText> AddLine(Screen& screen, ILayer* layer, int x, int y, int width, int font_size,
                         const std::string& utf8, ColorValue color, AttrValue format)
{
    ZELObjPtr<IText> text(zelCreateText(screen.Fonts()));
    Place(text, x, y, width, font_size * 3 / 2);
    text->SetAttribute(AttrFontIndex, 1);
    text->SetAttribute(AttrFontSize, font_size);
    text->SetAttribute(AttrLineHeight, 0); // as the font has it
    text->SetAttribute(AttrTextFormat, format);
    text->SetAttribute(AttrColor, static_cast<AttrValue>(color));
    SetLine(screen, text, utf8);
    layer->AddWidget(text);
    return text;
}

void SetLine(Screen& screen, IText* text, const std::string& utf8)
{
    text->SetText(utf8.data(), static_cast<UInt32>(utf8.size()), EncodingUTF8, &screen.Formatter());
}

} // namespace kestrin_examples
