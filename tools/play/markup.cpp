#include "markup.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>

namespace kestrin_play {
namespace {

const std::map<std::string, std::uint32_t>& ColourNames()
{
    static const std::map<std::string, std::uint32_t> names = {
        {"black", 0x000000},  {"silver", 0xC0C0C0}, {"gray", 0x808080},   {"white", 0xFFFFFF},
        {"maroon", 0x800000}, {"red", 0xFF0000},    {"purple", 0x800080}, {"fuchsia", 0xFF00FF},
        {"green", 0x008000},  {"lime", 0x00FF00},   {"olive", 0x808000},  {"yellow", 0xFFFF00},
        {"navy", 0x000080},   {"blue", 0x0000FF},   {"teal", 0x008080},   {"aqua", 0x00FFFF},
    };
    return names;
}

std::optional<std::uint32_t> ReadColour(const std::string& value)
{
    const auto named = ColourNames().find(value);
    if (named != ColourNames().end())
        return named->second;
    if (value.size() != 7 || value[0] != '#')
        return std::nullopt;
    std::uint32_t rgb = 0;
    for (const char c : value.substr(1)) {
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return std::nullopt;
        rgb = rgb * 16 + static_cast<std::uint32_t>(c <= '9' ? c - '0' : c - 'a' + 10);
    }
    return rgb;
}

/** Neither drawn nor of use to the layout: controls, byte mark. */
bool IsInvisible(char16_t unit)
{
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0xFEFF;
}

/** The text from "<" or "{" to its counterpart, in small ASCII letters; empty if there is none. */
std::string TagAt(const std::u16string& line, std::size_t at)
{
    const char16_t close = line[at] == u'<' ? u'>' : u'}';
    const std::size_t end = line.find(close, at);
    if (end == std::u16string::npos)
        return {};
    std::string tag;
    for (const char16_t unit : line.substr(at, end + 1 - at))
        tag += unit < 0x80 ? static_cast<char>(std::tolower(static_cast<int>(unit))) : '?';
    return tag;
}

bool IsStyleTag(const std::string& tag)
{
    static const char* const tags[] = {"<i>", "</i>", "<b>", "</b>", "<u>", "</u>", "<s>", "</s>"};
    return std::find(std::begin(tags), std::end(tags), tag) != std::end(tags);
}

} // namespace

StyledLine MarkupReader::ReadLine(const std::u16string& line)
{
    StyledLine styled = {{}, {{0, Colour()}}};
    for (std::size_t at = 0; at < line.size();) {
        if (ReadTag(line, &at)) {
            if (styled.colours.back().rgb == Colour())
                continue;
            if (styled.colours.back().begin == styled.text.size())
                styled.colours.back().rgb = Colour();
            else
                styled.colours.push_back({styled.text.size(), Colour()});
            continue;
        }
        const char16_t unit = line[at++];
        if (unit == u'\t')
            styled.text += u' ';
        else if (!IsInvisible(unit))
            styled.text += unit;
    }
    return styled;
}

bool MarkupReader::ReadTag(const std::u16string& line, std::size_t* at)
{
    if (line[*at] != u'<' && line[*at] != u'{')
        return false;
    const std::string tag = TagAt(line, *at);
    // Other subtitle formats leave positions behind: {\an8}.
    const bool override = tag.rfind("{\\", 0) == 0;
    const bool begins_font = tag.rfind("<font", 0) == 0;
    const bool ends_font = tag == "</font>";
    if (!override && !begins_font && !ends_font && !IsStyleTag(tag))
        return false;
    if (begins_font)
        BeginFont(tag);
    else if (ends_font && !_fonts.empty())
        _fonts.pop_back();
    *at += tag.size();
    return true;
}

void MarkupReader::BeginFont(const std::string& tag)
{
    std::uint32_t colour = Colour();
    const std::size_t name = tag.find("color=");
    if (name != std::string::npos) {
        std::size_t from = name + 6;
        if (tag[from] == '"' || tag[from] == '\'')
            ++from;
        const std::size_t to = tag.find_first_of("\"' >", from);
        colour = ReadColour(tag.substr(from, to - from)).value_or(colour);
    }
    _fonts.push_back(colour);
}

} // namespace kestrin_play
