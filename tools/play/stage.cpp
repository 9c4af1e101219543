#include "stage.h"

#include "engine_palette.h"

#include <algorithm>
#include <cmath>

namespace kestrin_play {
namespace {

using zelxxx::AttrIndex;
using zelxxx::IWidget;
using zelxxx::MetricValue;
using zelxxx::UInt16;
using zelxxx::ZELObjPtr;

/** What captions stand on; glyph edges on 8-bit displays fade towards it. 0xRRGGBB. */
constexpr std::uint32_t caption_box_colour = 0x000000;
constexpr std::uint32_t box_argb = 0xB0000000 | caption_box_colour;
constexpr std::uint32_t track_argb = 0xB0000000;
constexpr std::uint32_t bar_argb = 0xFFFFB030;

/** The engine draws no glyph of more than 10000 pixels. */
constexpr int largest_font = 90;

/** 0xAARRGGBB to the order the engine draws with. */
int SwappedColour(std::uint32_t argb)
{
    return static_cast<int>((argb & 0xFF) << 16 | (argb & 0xFF00) | (argb >> 16 & 0xFF));
}

void Place(IWidget* widget, int left, int top, int width, int height)
{
    widget->SetAttribute(zelxxx::AttrPosX, left);
    widget->SetAttribute(zelxxx::AttrPosY, top);
    widget->SetAttribute(zelxxx::AttrSpanX, width);
    widget->SetAttribute(zelxxx::AttrSpanY, height);
}

/** Kept free left and right of everything. */
int SideMargin(int width)
{
    return width / 20;
}

/** Room above the first and below the last line. */
int EdgePadding(int font_size)
{
    return font_size / 4;
}

/** Lines of text stand this many pixels apart. */
int LineHeight(int font_size)
{
    return font_size * 13 / 10;
}

/** Kept free at both ends of a text's lines. */
int TextMargin(int font_size)
{
    return font_size / 2;
}

zelxxx::FlowStyle CaptionStyle(int font_size)
{
    zelxxx::FlowStyle style;
    style.balanced = true;
    style.korean_words = true;
    style.shadow_x = style.shadow_y = static_cast<MetricValue>(font_size / 16 + 1);
    style.shadow_blend = 255;
    return style;
}

} // namespace

Stage::Stage(const ScreenFormat& format)
    : _format(format), _font_size(std::clamp(format.height / 18, 8, largest_font)),
      _formatter(format.mode), _ruler(zelxxx::zelCreateText(nullptr)),
      _captions(zelxxx::zelCreateLayer(nullptr)), _programme(zelxxx::zelCreateLayer(nullptr))
{
    const bool indexed = format.mode == zelxxx::Color8Bit;
    zelxxx::FlowStyle style = CaptionStyle(_font_size);
    style.shadow_color = ColourValue(0x000000);
    _formatter.SetStyle(style);
    _formatter.SetGround(caption_box_colour);
    _scene = zelxxx::zelCreateScene(0, static_cast<MetricValue>(format.width),
                                    static_cast<MetricValue>(format.height), format.mode,
                                    zelxxx::SceneUseDoubleBuffer,
                                    indexed ? zelxxx::BlendSrcOver8BIT : zelxxx::BlendSrcOver);
    if (indexed)
        LoadPalette();

    _box = AddRectangle(_captions, box_argb);
    const auto track = AddRectangle(_programme, track_argb);
    _bar = AddRectangle(_programme, bar_argb);
    const int side = SideMargin(format.width);
    const int height = std::max(3, format.height / 90);
    Place(track, side, format.height - format.height / 14, format.width - 2 * side, height);
    Place(_bar, side, format.height - format.height / 14, 0, height);
    _scene->AddLayer(_programme);
    _scene->AddLayer(_captions);
}

void Stage::LoadPalette()
{
    const ZELObjPtr<zelxxx::IPalette> palette(
        kestrin_tools::CreatePalette(kestrin_tools::FixedPalette()));
    constexpr UInt16 unchanged = 256;
    _scene->SetPalette(palette, unchanged, unchanged, unchanged);
}

ZELObjPtr<IWidget> Stage::AddRectangle(zelxxx::ILayer* layer, std::uint32_t argb)
{
    ZELObjPtr<IWidget> rectangle(zelxxx::zelCreateRectangle(nullptr));
    if (_format.mode == zelxxx::Color8Bit) {
        rectangle->SetAttribute(zelxxx::AttrColor, zelxxx::OSD_FindNearestColourIndex(argb));
    } else {
        rectangle->SetAttribute(zelxxx::AttrColor, SwappedColour(argb));
        rectangle->SetAttribute(zelxxx::AttrBlend, static_cast<int>(argb >> 24));
    }
    layer->AddWidget(rectangle);
    return rectangle;
}

/** 0xRRGGBB as widgets of the display take it. */
zelxxx::ColorValue Stage::ColourValue(std::uint32_t rgb) const
{
    if (_format.mode == zelxxx::Color8Bit)
        return zelxxx::OSD_FindNearestColourIndex(0xFF000000 | rgb);
    return static_cast<zelxxx::ColorValue>(SwappedColour(rgb));
}

void Stage::SetFont(zelxxx::IText* text, const CaptionLine& line, int width) const
{
    text->SwitchResource(line.font.resource);
    text->SetAttribute(zelxxx::AttrFontIndex, line.font.index);
    text->SetAttribute(zelxxx::AttrFontSize, _font_size);
    text->SetAttribute(zelxxx::AttrLineHeight, LineHeight(_font_size));
    text->SetAttribute(zelxxx::AttrTextFormat, zelxxx::TextWrap | zelxxx::TextAlignTop);
    text->SetAttribute(zelxxx::AttrSpanX, width);
}

Stage::Measured Stage::Measure(const CaptionLine& line)
{
    const int widest = _format.width - 2 * SideMargin(_format.width) - 2 * TextMargin(_font_size);
    SetFont(_ruler, line, widest);
    const std::u16string& text = line.styled.text;
    const zelxxx::FlowLayout layout = _formatter.LayOut(
        _ruler, text.data(), static_cast<zelxxx::UInt32>(text.size() * sizeof text[0]),
        zelxxx::EncodingUnicode);
    return {&line, static_cast<int>(layout.GetLineCount()), layout.GetWidth()};
}

std::vector<Stage::Measured> Stage::MeasureWhatFits(const std::vector<const Caption*>& captions,
                                                    int room, int* dropped)
{
    int rows = (room - 2 * EdgePadding(_font_size)) / LineHeight(_font_size);
    std::vector<Measured> fitting;
    *dropped = 0;
    for (const Caption* caption : captions) {
        for (const CaptionLine& line : caption->lines) {
            const Measured measured = Measure(line);
            if (measured.rows > rows) {
                ++*dropped;
                continue;
            }
            rows -= measured.rows;
            fitting.push_back(measured);
        }
    }
    return fitting;
}

int Stage::Show(const std::vector<const Caption*>& captions, double progress)
{
    const int bottom = _format.height - _format.height / 9;
    const int line_height = LineHeight(_font_size);
    int dropped = 0;
    const std::vector<Measured> shown =
        MeasureWhatFits(captions, bottom - _format.height / 20, &dropped);

    int rows = 0, width = 0;
    for (const Measured& measured : shown) {
        rows += measured.rows;
        width = std::max(width, measured.width);
    }
    width += 2 * TextMargin(_font_size);
    const int height = rows * line_height + 2 * EdgePadding(_font_size);
    const int left = (_format.width - width) / 2;
    int top = bottom - height;
    _box->SetVisibility(!shown.empty());
    if (!shown.empty())
        Place(_box, left, top, width, height);
    top += EdgePadding(_font_size);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        ShowLine(i, shown[i], left, top, width);
        top += shown[i].rows * line_height;
    }
    for (std::size_t i = shown.size(); i < _slots.size(); ++i)
        _slots[i]->SetVisibility(false);

    const int whole = _format.width - 2 * SideMargin(_format.width);
    _bar->SetAttribute(zelxxx::AttrSpanX,
                       static_cast<int>(std::lround(whole * std::clamp(progress, 0.0, 1.0))));
    return dropped;
}

void Stage::ShowLine(std::size_t slot, const Measured& measured, int left, int top, int width)
{
    const CaptionLine& line = *measured.line;
    zelxxx::IText* const at = SlotAt(slot);
    SetFont(at, line, width);
    SetColours(line, at);
    // Descenders and shadows reach below the last line.
    Place(at, left, top, width, measured.rows * LineHeight(_font_size) + EdgePadding(_font_size));
    const std::u16string& text = line.styled.text;
    at->SetText(text.data(), static_cast<zelxxx::UInt32>(text.size() * sizeof text[0]),
                zelxxx::EncodingUnicode, &_formatter);
    at->SetVisibility(true);
}

void Stage::SetColours(const CaptionLine& line, zelxxx::IText* text)
{
    const std::vector<ColourRun>& colours = line.styled.colours;
    std::vector<zelxxx::FlowColorRun> runs;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const std::size_t end =
            i + 1 < colours.size() ? colours[i + 1].begin : line.styled.text.size();
        runs.push_back({static_cast<zelxxx::UInt32>(colours[i].begin),
                        static_cast<zelxxx::UInt32>(end), ColourValue(colours[i].rgb), 255});
    }
    _formatter.SetColors(runs.data(), static_cast<zelxxx::UInt32>(runs.size()), text);
}

zelxxx::IText* Stage::SlotAt(std::size_t index)
{
    while (_slots.size() <= index) {
        _slots.emplace_back(zelxxx::zelCreateText(nullptr));
        _captions->AddWidget(_slots.back());
    }
    return _slots[index];
}

} // namespace kestrin_play
