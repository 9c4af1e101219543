#include "layout.h"

#include <algorithm>

namespace kestrin_play {
namespace {

using zelxxx::IFont;
using zelxxx::UInt16;
using zelxxx::WChar;

/** Han, kana and their punctuation, which are written without spaces between words. */
bool IsUnspaced(char16_t unit)
{
    return (unit >= 0x2E80 && unit <= 0x9FFF) || (unit >= 0xF900 && unit <= 0xFAFF) ||
           (unit >= 0xFF00 && unit <= 0xFFEF);
}

/** Must not begin a line: closing punctuation, small kana, the long vowel mark. */
bool StaysBehind(char16_t unit)
{
    return std::u16string_view(u"、。，．：；！？）」』】》〉…・ーっゃゅょッャュョ’”,.;:!?)")
               .find(unit) != std::u16string_view::npos;
}

/** Must not end a line. */
bool StaysAhead(char16_t unit)
{
    return std::u16string_view(u"（「『【《〈‘“(").find(unit) != std::u16string_view::npos;
}

bool MayBreakBefore(const std::u16string& text, std::size_t at)
{
    const char16_t before = text[at - 1];
    const char16_t after = text[at];
    if (before == u' ')
        return after != u' ';
    return (IsUnspaced(before) || IsUnspaced(after)) && after != u' ' && !StaysBehind(after) &&
           !StaysAhead(before);
}

/** Measures stretches of one text. */
class Ruler
{
public:
    Ruler(IFont& font, UInt16 size, const std::u16string& text) : _font(font)
    {
        _pens.push_back(0);
        for (std::size_t i = 0; i < text.size(); ++i) {
            const WChar unit = text[i];
            int pen = _pens.back() + font.GetFTNoScaleCharMetricsX(unit, size, zelxxx::FontRegular);
            if (i + 1 < text.size())
                pen += font.GetFTKerning(unit, text[i + 1], size, zelxxx::FontRegular);
            _pens.push_back(pen);
        }
    }

    /** Pixels from the pen of unit `from` to that of unit `to`, which may be the text's length. */
    int Width(std::size_t from, std::size_t to) const
    {
        return _font.NoScaleFontUnitsToPixelsInCalculate(_pens[to] - _pens[from], 100, 100);
    }

private:
    IFont& _font;
    std::vector<int> _pens; ///< in font units times size, so that rounding does not add up
};

/** Half-open range of units that make up a line. */
struct Range
{
    std::size_t begin, end;
};

std::size_t WithoutBlanks(const std::u16string& text, std::size_t begin, std::size_t end)
{
    while (end > begin && text[end - 1] == u' ')
        --end;
    return end;
}

struct Broken
{
    std::vector<Range> lines;
    int forced; ///< breaks inside a word
};

Broken Break(const Ruler& ruler, const std::u16string& text, int width)
{
    Broken broken = {{}, 0};
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t end = begin + 1;
        std::size_t last_break = 0;
        for (; end < text.size(); ++end) {
            if (MayBreakBefore(text, end))
                last_break = end;
            if (ruler.Width(begin, WithoutBlanks(text, begin, end + 1)) > width)
                break;
        }
        if (end < text.size() && last_break > begin)
            end = last_break;
        else if (end < text.size())
            ++broken.forced;
        broken.lines.push_back({begin, end});
        begin = end;
    }
    return broken;
}

} // namespace

std::vector<PlacedLine> LayOut(IFont& font, UInt16 size, const std::u16string& text, int width)
{
    const Ruler ruler(font, size, text);
    Broken best = Break(ruler, text, width);
    // The narrowest width that needs no further line or cut makes the lines about equally long.
    int enough = width;
    for (int too_narrow = 0; best.lines.size() > 1 && enough - too_narrow > 1;) {
        const int middle = (enough + too_narrow) / 2;
        Broken tried = Break(ruler, text, middle);
        if (tried.lines.size() > best.lines.size() || tried.forced > best.forced) {
            too_narrow = middle;
        } else {
            enough = middle;
            best = std::move(tried);
        }
    }

    std::vector<PlacedLine> lines;
    for (const Range& range : best.lines) {
        const std::size_t end = WithoutBlanks(text, range.begin, range.end);
        PlacedLine line = {{}, ruler.Width(range.begin, end)};
        for (std::size_t i = range.begin; i < end; ++i)
            line.units.push_back(
                {static_cast<zelxxx::Int16>(ruler.Width(range.begin, i)), text[i], i});
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace kestrin_play
