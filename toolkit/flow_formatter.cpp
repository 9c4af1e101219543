#include "flow_draw_p.h"
#include "flow_ramp_p.h"

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <utility>

namespace zelxxx {

namespace {

/** What layouts are kept: those used last, as long as they are not more than this. */
constexpr std::size_t kMostLayouts = 256;
constexpr std::size_t kMostKeptUnits = 4 * std::size_t{kMostUnits};

/** The TextFormat bits that layouts depend on; marks are drawn into any. */
constexpr UInt32 kPlacing =
    TextAlignLeft | TextAlignRight | TextAlignTop | TextAlignBottom | TextWrap | TextEndEllipsis;

constexpr Int32 kWidestOutline = 8;
constexpr Int32 kMostPixels = 32767;

UInt16 Attribute16(IText* text, AttrIndex index)
{
    return static_cast<UInt16>(text->GetAttribute(index));
}

/** Sizes of a text's line. */
struct Sizes
{
    UInt16 font;
    UInt16 line;
};

/** A size at the reference span for the span, rounded to the nearest. */
UInt16 Scaled(UInt16 size, std::int64_t span, std::int64_t reference)
{
    const std::int64_t scaled = (size * span + reference / 2) / reference;
    return static_cast<UInt16>(std::clamp<std::int64_t>(scaled, 0, 0xffff));
}

Sizes SizesOf(IText* text, const FlowStyle& style)
{
    if (!style.reference_sizes)
        return {Attribute16(text, AttrFontSize), Attribute16(text, AttrLineHeight)};
    std::int64_t span = 1;
    std::int64_t reference = 1;
    const auto consider = [&](AttrIndex span_index, AttrIndex reference_index, bool first) {
        const std::int64_t other_span = std::max(0, text->GetAttribute(span_index));
        const std::int64_t other_reference = text->GetAttribute(reference_index);
        if (other_reference <= 0 || (!first && other_span * reference >= span * other_reference))
            return;
        span = other_span;
        reference = other_reference;
    };
    consider(AttrSpanX, AttrOrgSpanX, true);
    consider(AttrSpanY, AttrOrgSpanY, text->GetAttribute(AttrOrgSpanX) <= 0);
    return {Scaled(Attribute16(text, AttrOrgFontSize), span, reference),
            Scaled(Attribute16(text, AttrOrgLineHeight), span, reference)};
}

FlowBox BoxOf(IText* text, const FlowStyle& style, const Sizes& sizes, IFont* font)
{
    FlowBox box = {};
    box.width = std::clamp(text->GetAttribute(AttrSpanX), 0, kMostPixels);
    box.height = std::clamp(text->GetAttribute(AttrSpanY), 0, kMostPixels);
    const Int32 outline =
        style.outline_blend != 0 ? std::min<Int32>(style.outline_width, kWidestOutline) : 0;
    const Int32 shadow_x = style.shadow_blend != 0 ? style.shadow_x : 0;
    const Int32 shadow_y = style.shadow_blend != 0 ? style.shadow_y : 0;
    box.left = std::max(outline, -shadow_x);
    box.right = std::max(outline, shadow_x);
    box.top = std::max(outline, -shadow_y);
    box.bottom = std::max(outline, shadow_y);
    box.format = static_cast<UInt32>(text->GetAttribute(AttrTextFormat)) & kPlacing;
    box.molecule = static_cast<UInt32>(text->GetAttribute(AttrFontScalerMolecule));
    box.denominator = static_cast<UInt32>(text->GetAttribute(AttrFontScalerDenominator));
    box.letter_space = std::clamp(text->GetAttribute(AttrLetterSpace), -kMostPixels, kMostPixels);
    box.balanced = style.balanced;
    box.line_height = sizes.line;
    if (box.line_height == 0) {
        FontMetrics metrics = {};
        font->GetFTFontMetrics(sizes.font, FontRegular, &metrics);
        box.line_height = std::max<Int32>(1, metrics.height);
    }
    return box;
}

/** Has a widget formatted and painted anew. */
void Touch(IText* text)
{
    if (text)
        text->SetAttribute(AttrColor, text->GetAttribute(AttrColor));
}

} // namespace

/** What a formatter keeps. */
class FlowParts
{
public:
    /** What the client has set for a widget, or for all. */
    struct Settings
    {
        std::optional<FlowStyle> style;
        std::optional<FlowColors> colors;
        std::optional<IFlowLineHandler*> handler;
    };
    using Placement = std::shared_ptr<const FlowPlacement>;

    explicit FlowParts(ColorMode mode) : indexed(mode == Color8Bit)
    {
        _common.style = FlowStyle();
        _common.colors = FlowColors();
        _common.handler = nullptr;
    }

    Settings& At(IText* text) { return text ? _own[text] : _common; }
    void Forget(IText* text) { _own.erase(text); }

    /** One of a widget's settings, or what applies to all. */
    template <class T>
    const T& Get(IText* text, std::optional<T> Settings::*setting) const
    {
        const auto own = _own.find(text);
        const bool has = own != _own.end() && (own->second.*setting).has_value();
        return has ? *(own->second.*setting) : *(_common.*setting);
    }

    Placement Place(IText* text, PtrConstWChar units, UInt32 length);
    void Clear()
    {
        _layouts.clear();
        _meter.Clear();
        _kept_units = 0;
    }

    const bool indexed;
    FlowRamps ramps;

private:
    void Keep(const Placement& placement);

    Settings _common;
    std::map<IText*, Settings> _own;
    FlowBreaker _breaker;
    FlowMeter _meter;
    std::list<Placement> _layouts; /**< the one used last first */
    std::size_t _kept_units = 0;
};

/** The layout of a text for a widget, made now or earlier; null when nothing can be laid out. */
FlowParts::Placement FlowParts::Place(IText* text, PtrConstWChar units, UInt32 length)
{
    const FlowStyle& style = Get(text, &Settings::style);
    const Sizes sizes = SizesOf(text, style);
    IFont* const font = text->GetFont();
    if (!font || sizes.font == 0)
        return nullptr;
    UInt32 count = std::min(length, kMostUnits);
    if (count < length && (units[count - 1] & 0xfc00) == 0xd800)
        --count; // not half a pair
    const FlowSource source = {{units, units + count}, count < length,    font, sizes.font,
                               style.direction,        style.korean_words};
    const FlowBox box = BoxOf(text, style, sizes, font);

    std::shared_ptr<const FlowText> same_text;
    for (auto at = _layouts.begin(); at != _layouts.end(); ++at) {
        if (!((*at)->text->source == source))
            continue;
        if ((*at)->box == box) {
            _layouts.splice(_layouts.begin(), _layouts, at);
            return _layouts.front();
        }
        same_text = (*at)->text;
    }
    if (!same_text)
        same_text = std::make_shared<FlowText>(source, _breaker, _meter);
    Keep(std::make_shared<FlowPlacement>(same_text, box, _meter));
    return _layouts.front();
}

void FlowParts::Keep(const Placement& placement)
{
    _layouts.push_front(placement);
    _kept_units += placement->text->source.units.size();
    while (_layouts.size() > 1 &&
           (_layouts.size() > kMostLayouts || _kept_units > kMostKeptUnits)) {
        _kept_units -= _layouts.back()->text->source.units.size();
        _layouts.pop_back();
    }
}

// ---- The formatter ----------------------------------------------------------------------------

FlowFormatter::FlowFormatter(ColorMode display_mode) : _parts(new FlowParts(display_mode)) {}

FlowFormatter::~FlowFormatter() = default;

void FlowFormatter::SetStyle(const FlowStyle& style, IText* text)
{
    _parts->At(text).style = style;
    Touch(text);
}

void FlowFormatter::SetColors(const FlowColorRun* runs, UInt32 count, IText* text)
{
    FlowColors colors;
    for (UInt32 i = 0; i < count; ++i)
        colors.Add(runs[i]);
    _parts->At(text).colors = std::move(colors);
    Touch(text);
}

void FlowFormatter::SetLineHandler(IFlowLineHandler* handler, IText* text)
{
    _parts->At(text).handler = handler;
    Touch(text);
}

void FlowFormatter::Forget(IText* text)
{
    _parts->Forget(text);
}

void FlowFormatter::SetGround(ColorValue color)
{
    _parts->ramps.SetGround(true, color);
}

void FlowFormatter::ResetGround()
{
    _parts->ramps.SetGround(false, 0);
}

FlowLayout FlowFormatter::LayOut(IText* text, PtrConstAny bytes, UInt32 length,
                                 TextEncoding encoding)
{
    FlowLayout layout;
    std::vector<WChar> units;
    if (bytes && encoding == EncodingUnicode) {
        // The bytes need not be aligned.
        const auto* from = static_cast<const char*>(bytes);
        units.resize(length / 2);
        std::copy(from, from + units.size() * 2, reinterpret_cast<char*>(units.data()));
    } else if (bytes && length <= INT32_MAX) {
        units.resize(std::size_t{length} * 2);
        const auto room = static_cast<Int32>(length);
        const Int32 count = zelConvertToUnicode(bytes, length, encoding, units.data(), room);
        units.resize(static_cast<std::size_t>(count));
    }
    layout._placement = _parts->Place(text, units.data(), static_cast<UInt32>(units.size()));
    return layout;
}

void FlowFormatter::Clear()
{
    _parts->Clear();
}

void FlowFormatter::Format(IText* text, PtrWChar units, UInt32 length)
{
    const FlowStyle& style = _parts->Get(text, &FlowParts::Settings::style);
    const FlowParts::Placement placement = _parts->Place(text, units, length);
    if (style.reference_sizes) {
        const Sizes sizes = SizesOf(text, style);
        if (sizes.font != Attribute16(text, AttrFontSize))
            text->SetAttribute(AttrFontSize, sizes.font);
        if (sizes.line != Attribute16(text, AttrLineHeight))
            text->SetAttribute(AttrLineHeight, sizes.line);
    }
    if (placement)
        FlowDrawing(text, *placement, style, _parts->Get(text, &FlowParts::Settings::colors),
                    _parts->indexed)
            .Draw();
    // Last, since it may change the settings.
    if (IFlowLineHandler* handler = _parts->Get(text, &FlowParts::Settings::handler)) {
        const UInt32 count = placement ? static_cast<UInt32>(placement->rows.size()) : 0;
        for (UInt32 i = 0; i < count; ++i)
            handler->HandleLine(text, i, count, placement->LineOf(i));
        if (count == 0)
            handler->HandleLine(text, 0, 0, FlowLine());
    }
}

void FlowFormatter::GetCharBuffer(const CharMetrics* char_metrics, ColorValue color,
                                  BlendValue blend, PtrSChar buffer)
{
    if (!char_metrics->buffer)
        return;
    const FlowRamps::Ramp& ramp = _parts->ramps.Find(color, blend);
    const Int32 count = char_metrics->width * char_metrics->height;
    std::transform(char_metrics->buffer, char_metrics->buffer + std::max(0, count), buffer,
                   [&](UInt8 coverage) { return static_cast<SChar>(ramp[coverage]); });
}

// ---- Layouts ------------------------------------------------------------------------------------

UInt32 FlowLayout::GetLineCount() const
{
    return _placement ? static_cast<UInt32>(_placement->rows.size()) : 0;
}

FlowLine FlowLayout::GetLine(UInt32 index) const
{
    return _placement ? _placement->LineOf(index) : FlowLine();
}

Int32 FlowLayout::GetWidth() const
{
    return _placement ? _placement->Width() : 0;
}

Int32 FlowLayout::GetHeight() const
{
    return _placement ? _placement->Height() : 0;
}

bool FlowLayout::IsCut() const
{
    return _placement && _placement->cut;
}

UInt32 FlowLayout::GetCharacterAt(Int32 x, Int32 y) const
{
    return _placement ? _placement->UnitAt(x, y) : UInt32{FlowNoCharacter};
}

FlowRect FlowLayout::GetCharacterRect(UInt32 unit) const
{
    return _placement ? _placement->RectOfUnit(unit) : FlowRect();
}

} // namespace zelxxx
