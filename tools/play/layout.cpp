#include "layout.h"

#include <linebreak.h>

#include <algorithm>

namespace kestrin_play {
namespace {

using zelxxx::IFont;
using zelxxx::UInt16;
using zelxxx::WChar;

bool IsHangul(char16_t unit)
{
    return unit >= 0xAC00 && unit <= 0xD7A3;
}

/** For each unit, whether a line may end behind it, by the Unicode line-breaking rules. */
std::vector<bool> FindBreaks(const std::u16string& text)
{
    std::vector<char> rules(text.size());
    set_linebreaks_utf16(reinterpret_cast<const utf16_t*>(text.data()), text.size(), nullptr,
                         rules.data());
    std::vector<bool> breaks(text.size());
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        // Korean captions are broken between words only, which the rules leave to the writer.
        breaks[i] =
            rules[i] <= LINEBREAK_ALLOWBREAK && !(IsHangul(text[i]) && IsHangul(text[i + 1]));
    }
    return breaks;
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

Broken Break(const Ruler& ruler, const std::u16string& text, const std::vector<bool>& breaks,
             int width)
{
    Broken broken = {{}, 0};
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t end = begin + 1;
        std::size_t last_break = 0;
        for (; end < text.size(); ++end) {
            if (breaks[end - 1])
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
    const std::vector<bool> breaks = FindBreaks(text);
    Broken best = Break(ruler, text, breaks, width);
    // The narrowest width that needs no further line or cut makes the lines about equally long.
    int enough = width;
    for (int too_narrow = 0; best.lines.size() > 1 && enough - too_narrow > 1;) {
        const int middle = (enough + too_narrow) / 2;
        Broken tried = Break(ruler, text, breaks, middle);
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
