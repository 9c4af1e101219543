/**
 * A text widget and a font for tests of layout, both made of the public interface alone.
 *
 *     FlowFormatter formatter(Color32Bit);
 *     RecordingText text;                       // 100 x 72 pixels
 *     text.Show(u"two words", formatter);
 *     EXPECT_THAT(text.Rows(), ElementsAre(Row{5, 24, u"two words"}));
 *
 * In the font every character is 10 pixels wide at size 20, and a line 24 pixels high, with the
 * baseline where the engine's metrics have it.
 */
#pragma once

#include "vrel_kestrin_flow.h"

#include <cstddef>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kestrin_test {

using namespace zelxxx;

/** A font of numbers: 100 units to the em. Counts what it is asked. */
class NumberFont : public ZELObject<IFont, NumberFont>
{
public:
    static constexpr Int32 kUnits = 100;

    std::map<WChar, Int32> advances; /**< in units, where they are not 50 */
    std::map<std::pair<WChar, WChar>, Int32> kernings;
    std::set<WChar> missing;
    std::map<WChar, std::pair<Int32, Int32>> inks; /**< left and right of a picture, in pixels */
    int asked = 0;
    int converted = 0; /**< font units to pixels: what making a layout cannot do without */

    void GetFTFontMetrics(UInt16 size, FontStyle, FontMetrics* metrics) override
    {
        *metrics = {40, 62, 271, 231, 0, 1, 0, 0, 0};
        metrics->height = static_cast<UInt16>(((size * 62 + 255) >> 8) + ((size * 231 + 255) >> 8));
    }
    Int32 GetFTNoScaleCharMetricsX(WChar ch, UInt16 size, FontStyle) override
    {
        ++asked;
        const auto own = advances.find(ch);
        return size * (own == advances.end() ? 50 : own->second);
    }
    Int32 GetFTKerning(WChar left, WChar right, UInt16 size, FontStyle) override
    {
        ++asked;
        const auto own = kernings.find({left, right});
        return own == kernings.end() ? 0 : size * own->second;
    }
    Int32 GetFTYOffsetTop(UInt16 size) override { return (size * 231 + 255) >> 8; }
    Int32 GetFTYOffsetBottom(UInt16 size) override { return (size * 62 + 255) >> 8; }
    Int32 GetFTXOffsetLeft(UInt16, UInt32, UInt32) override { return 0; }
    void GetFTCharMetrics(WChar ch, UInt16, FontStyle, CharMetrics* glyph, UInt32, UInt32) override
    {
        ++asked;
        *glyph = {};
        if (ch == ' ' || missing.count(ch) != 0)
            return;
        const auto own = inks.find(ch);
        const std::pair<Int32, Int32> ink = own == inks.end() ? std::make_pair(1, 9) : own->second;
        glyph->hori_bearing_x = static_cast<Int16>(ink.first);
        glyph->width = ink.second - ink.first;
        glyph->height = 12;
        glyph->bitmap_top = 12;
    }
    Int32 NoScaleFontUnitsToPixelsInCalculate(Int32 value, UInt32 molecule,
                                              UInt32 denominator) override
    {
        ++converted;
        const std::int64_t pixels = (std::int64_t{value} + kUnits - 1) / kUnits;
        return denominator ? static_cast<Int32>((pixels * molecule + denominator - 1) / denominator)
                           : 0;
    }
    Int32 NoScaleFontUnitsToPixelsInDrawText(Int32 value, Int32 molecule,
                                             Int32 denominator) override
    {
        const std::int64_t pixels = (std::int64_t{value} + kUnits - 1) / kUnits;
        return denominator ? static_cast<Int32>((pixels * molecule + denominator - 1) / denominator)
                           : 0;
    }
};

/** A record that a formatter has appended. */
struct Record
{
    enum Kind
    {
        Char,
        Cursor,
        Color,
        Index
    };
    Kind kind;
    int x, y;
    char16_t glyph;
    UInt32 color; /**< 0xAABBGGRR or an index */

    bool operator==(const Record& other) const
    {
        return kind == other.kind && x == other.x && y == other.y && glyph == other.glyph &&
               color == other.color;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Record& record)
{
    const char* const names[] = {"char", "cursor", "color", "index"};
    return out << names[record.kind] << ' ' << record.x << ' ' << record.y << " U+" << std::hex
               << static_cast<unsigned>(record.glyph) << ' ' << record.color << std::dec;
}

/** Characters at one height: where the first is, and all from left to right, a cell each. */
struct Row
{
    int x, y;
    std::u16string text;

    bool operator==(const Row& other) const
    {
        return x == other.x && y == other.y && text == other.text;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Row& row)
{
    out << row.x << ' ' << row.y << " \"";
    for (const char16_t unit : row.text) {
        if (unit < 0x80)
            out << static_cast<char>(unit);
        else
            out << "\\u" << std::hex << static_cast<unsigned>(unit) << std::dec;
    }
    return out << '"';
}

class RecordingText : public IText
{
public:
    static constexpr int kCell = 10;

    RecordingText()
    {
        attributes = {{AttrSpanX, 100},
                      {AttrSpanY, 72},
                      {AttrOrgSpanX, 720},
                      {AttrOrgSpanY, 576},
                      {AttrColor, 0xffffff},
                      {AttrFontSize, 20},
                      {AttrOrgFontSize, 16},
                      {AttrFontScalerMolecule, 100},
                      {AttrFontScalerDenominator, 100},
                      {AttrLineHeight, 24},
                      {AttrOrgLineHeight, 16}};
    }

    /** Has a text formatted, in place of what was there. */
    RecordingText& Show(std::u16string text, FlowFormatter& formatter)
    {
        records.clear();
        formatter.Format(this, reinterpret_cast<PtrWChar>(&text[0]),
                         static_cast<UInt32>(text.size()));
        return *this;
    }
    /** The same text again, with TextFormat bits. */
    RecordingText& Show(const std::u16string& text, FlowFormatter& formatter, int format)
    {
        attributes[AttrTextFormat] = format;
        return Show(text, formatter);
    }

    std::vector<Record> Of(Record::Kind kind) const
    {
        std::vector<Record> found;
        for (const Record& record : records) {
            if (record.kind == kind)
                found.push_back(record);
        }
        return found;
    }

    /** From top to bottom. For characters of the usual width; blanks are seen by their gaps. */
    std::vector<Row> Rows() const
    {
        std::map<int, std::map<int, char16_t>> at;
        for (const Record& record : Of(Record::Char))
            at[record.y][record.x] = record.glyph;
        std::vector<Row> rows;
        for (const auto& line : at) {
            Row row = {line.second.begin()->first, line.first, {}};
            for (const auto& one : line.second) {
                const auto cell = static_cast<std::size_t>((one.first - row.x) / kCell);
                row.text.resize(std::max(row.text.size(), cell), u' ');
                row.text += one.second;
            }
            rows.push_back(row);
        }
        return rows;
    }

    void SetAttribute(AttrIndex index, AttrValue value) override
    {
        ++sets;
        attributes[index] = value;
    }
    AttrValue GetAttribute(AttrIndex index) override
    {
        const auto found = attributes.find(index);
        return found == attributes.end() ? 0 : found->second;
    }
    IFont* GetFont() override { return font; }
    void AddCharInfo(Int16 x, Int16 y, UInt8, UInt16 ch) override
    {
        records.push_back({Record::Char, x, y, static_cast<char16_t>(ch), 0});
    }
    void AddCursorInfo(Int16 x, Int16 y, UInt16 ch, UInt32 color) override
    {
        records.push_back({Record::Cursor, x, y, static_cast<char16_t>(ch), color});
    }
    void AddColorInfo(UInt8 r, UInt8 g, UInt8 b, UInt8 a) override
    {
        const UInt32 color = r | static_cast<UInt32>(g) << 8 | static_cast<UInt32>(b) << 16 |
                             static_cast<UInt32>(a) << 24;
        records.push_back({Record::Color, 0, 0, 0, color});
    }
    void AddColorIndex(UInt8 index) override { records.push_back({Record::Index, 0, 0, 0, index}); }

    // What a formatter has no use for.
    int Hold() override { return 1; }
    int Release() override { return 1; }
    ILayer* GetLayer() override { return nullptr; }
    void SetVisibility(bool) override {}
    void SetRemoving(bool) override {}
    void SetAnchors(UInt8) override {}
    void AddModifier(IModifier*) override {}
    void RemoveModifier(IModifier*) override {}
    void SetText(PtrConstAny, UInt32, TextEncoding, ITextFormater*) override {}
    void SwitchResource(IResource*) override {}

    ZELObjPtr<NumberFont> numbers = new NumberFont;
    IFont* font = numbers; /**< another one for measuring with a real font */
    std::map<int, int> attributes;
    std::vector<Record> records;
    int sets = 0;
};

/** The units of a text, as LayOut takes them. */
inline FlowLayout LayOut(FlowFormatter& formatter, IText& text, const std::u16string& units)
{
    return formatter.LayOut(&text, units.data(), static_cast<UInt32>(units.size() * 2),
                            EncodingUnicode);
}

} // namespace kestrin_test
