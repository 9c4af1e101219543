#include "stage.h"

#include "layout.h"

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

} // namespace

Stage::Stage(const ScreenFormat& format)
    : _format(format), _font_size(std::clamp(format.height / 18, 8, largest_font)),
      _captions(zelxxx::zelCreateLayer(nullptr)), _programme(zelxxx::zelCreateLayer(nullptr))
{
    const bool indexed = format.mode == zelxxx::Color8Bit;
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

Stage::Measured Stage::Measure(const CaptionLine& line) const
{
    bool from_memory = false;
    zelxxx::PResource resource = line.font.resource;
    zelxxx::IFont* font = resource->OpenFont(line.font.index, from_memory);
    const int widest = _format.width - 2 * SideMargin(_format.width) - 2 * TextMargin(_font_size);
    const std::vector<PlacedLine> rows =
        LayOut(*font, static_cast<UInt16>(_font_size), line.styled.text, widest);
    Measured measured = {&line, static_cast<int>(rows.size()), 0};
    for (const PlacedLine& row : rows)
        measured.width = std::max(measured.width, row.width);
    return measured;
}

std::vector<Stage::Measured> Stage::MeasureWhatFits(const std::vector<const Caption*>& captions,
                                                    int room, int* dropped) const
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
        _slots[i].text->SetVisibility(false);

    const int whole = _format.width - 2 * SideMargin(_format.width);
    _bar->SetAttribute(zelxxx::AttrSpanX,
                       static_cast<int>(std::lround(whole * std::clamp(progress, 0.0, 1.0))));
    return dropped;
}

void Stage::ShowLine(std::size_t slot, const Measured& measured, int left, int top, int width)
{
    const CaptionLine& line = *measured.line;
    Slot& at = SlotAt(slot);
    at.formatter->SetColours(line.styled.colours);
    at.text->SwitchResource(line.font.resource);
    at.text->SetAttribute(zelxxx::AttrFontIndex, line.font.index);
    at.text->SetAttribute(zelxxx::AttrFontSize, _font_size);
    at.text->SetAttribute(zelxxx::AttrLineHeight, LineHeight(_font_size));
    // Descenders and shadows reach below the last line.
    Place(at.text, left, top, width,
          measured.rows * LineHeight(_font_size) + EdgePadding(_font_size));
    const std::u16string& text = line.styled.text;
    at.text->SetText(text.data(), static_cast<zelxxx::UInt32>(text.size() * sizeof text[0]),
                     zelxxx::EncodingUnicode, at.formatter.get());
    at.text->SetVisibility(true);
}

Stage::Slot& Stage::SlotAt(std::size_t index)
{
    while (_slots.size() <= index) {
        Slot& slot = _slots.emplace_back();
        slot.formatter = std::make_unique<CaptionFormatter>(_format.mode);
        slot.text = zelxxx::zelCreateText(nullptr);
        _captions->AddWidget(slot.text);
    }
    return _slots[index];
}

} // namespace kestrin_play
