/** What the tests of the text widget share: a painter that records and a formatter made on the
 * spot. */
#pragma once

#include "DFB/font.h"
#include "test_font.h"
#include "tscene.h"
#include "ttext.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace kestrin_test {

using namespace zelxxx;

inline IResource* OpenSans()
{
    Font::Initialize();
    return zelOpenResource("sans", SansBytes().data(), static_cast<int>(SansBytes().size()));
}

/** Holds a text widget through its interface and reaches its inside. */
class PText
{
public:
    PText(Text* text) : _text(text), _interface(text) {}
    Text* operator->() const { return _text; }
    Text& operator*() const { return *_text; }

private:
    Text* _text;
    ZELObjPtr<IText> _interface;
};

/** One call of a painter: its name and its numbers, in the order of the interface. */
struct Drawn
{
    std::string call;
    std::vector<std::int64_t> numbers;
    bool operator==(const Drawn& other) const
    {
        return call == other.call && numbers == other.numbers;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Drawn& drawn)
{
    out << drawn.call;
    for (const std::int64_t number : drawn.numbers)
        out << ' ' << number;
    return out;
}

/** Records what text draws, and draws nothing. */
class RecordingPainter : public ZELObject<IPainter, RecordingPainter>
{
public:
    explicit RecordingPainter(ColorMode color_mode) : mode(color_mode) {}

    void DrawRectangle(MetricValue left, MetricValue top, MetricValue width, MetricValue height,
                       ColorValue color, BlendValue blend, BlendMode blend_mode, BlitFlag blit_flag,
                       ColorValue dst_color) override
    {
        drawn.push_back(
            {"rectangle",
             {left, top, width, height, color, blend, blend_mode, blit_flag, dst_color}});
    }
    void DrawCharBitmap(PtrSChar buffer, const CharMetrics* glyph, IFont* with, UInt16 font_size,
                        MetricValue left, MetricValue top, BlendValue blend) override
    {
        Keep(*glyph, with);
        pixels.emplace_back(buffer, buffer + glyph->width * glyph->height);
        drawn.push_back({"indices", {font_size, left, top, blend}});
    }
    void Draw32BitCharBitmap(const CharMetrics* glyph, IFont* with, UInt16 font_size,
                             MetricValue left, MetricValue top, ColorValue color,
                             BlendValue blend) override
    {
        Keep(*glyph, with);
        drawn.push_back({"glyph", {font_size, left, top, color, blend}});
    }
    ColorMode GetColorMode() override { return mode; }

    void SetClipping(MetricValue, MetricValue, MetricValue, MetricValue) override { Other(); }
    void SetOrigin(MetricValue, MetricValue) override { Other(); }
    void DrawFrame(MetricValue, MetricValue, MetricValue, MetricValue, MetricValue, ColorValue,
                   BlendValue, BlendMode) override
    {
        Other();
    }
    void DrawImage(IImage*, UInt16, MetricValue, MetricValue, MetricValue, MetricValue, MetricValue,
                   MetricValue, MetricValue, MetricValue, BlendValue, BlendMode) override
    {
        Other();
    }
    void DrawTexture(IImage*, UInt16, MetricValue, MetricValue, MetricValue, MetricValue,
                     MetricValue, MetricValue, BlendValue, BlendMode) override
    {
        Other();
    }
    void DrawChar(WChar, MetricValue, MetricValue, IFont*, UInt16, FontStyle, ColorValue,
                  BlendValue, BlendMode, UInt32, UInt32) override
    {
        Other();
    }
    void SetBlendMode(BlendMode) override { Other(); }
    void DrawString(PtrConstWChar, UInt32, MetricValue, MetricValue, IFont*, UInt16, FontStyle,
                    ColorValue, BlendValue, BlendMode, UInt32) override
    {
        Other();
    }

    ColorMode mode;
    std::vector<Drawn> drawn;
    std::vector<std::string> pixels; /**< of each DrawCharBitmap */
    CharMetrics last_glyph = {};
    std::vector<std::string> coverage; /**< of each glyph drawn */
    IFont* font = nullptr;

private:
    void Keep(const CharMetrics& glyph, IFont* with)
    {
        last_glyph = glyph;
        const char* bytes = reinterpret_cast<const char*>(glyph.buffer);
        coverage.push_back(bytes ? std::string(bytes, bytes + glyph.width * glyph.height) : "");
        font = with;
    }
    static void Other() { ADD_FAILURE() << "text does not draw this way"; }
};

/** A formatter that does what it is told. */
class TestFormater : public ITextFormater
{
public:
    using Layout = std::function<void(IText&)>;
    explicit TestFormater(Layout text_layout = nullptr) : layout(std::move(text_layout)) {}

    void Format(IText* text, PtrWChar text_units, UInt32 length) override
    {
        ++runs;
        had_text = text_units != nullptr;
        units.assign(text_units, text_units + length);
        if (layout)
            layout(*text);
    }
    void GetCharBuffer(const CharMetrics* glyph, ColorValue color, BlendValue blend,
                       PtrSChar buffer) override
    {
        const int count = glyph->width * glyph->height;
        asked.push_back({"buffer", {glyph->width, glyph->height, color, blend}});
        entry_pixels.emplace_back(buffer, buffer + count);
        for (int i = 0; i < count; ++i)
            buffer[i] = static_cast<SChar>(glyph->buffer[i] >= 128 ? ink : 0);
    }

    Layout layout;
    int runs = 0;
    bool had_text = false;
    std::vector<WChar> units;
    std::vector<Drawn> asked;
    std::vector<std::string> entry_pixels;
    UInt8 ink = 100;
};

} // namespace kestrin_test
