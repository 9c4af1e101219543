/**
 * The few tags subtitle texts carry.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestrin_play {

/** From `begin`, an index into the text, on: 0xRRGGBB. */
struct ColourRun
{
    std::size_t begin;
    std::uint32_t rgb;
};

/** A line ready to be laid out. The first run begins at 0. */
struct StyledLine
{
    std::u16string text;
    std::vector<ColourRun> colours;
};

constexpr std::uint32_t default_text_colour = 0xFFFFFF;

/**
 * Takes the tags out of the lines of one cue. Italics, bold, underline and positions have no
 * effect;
 * `<font color="#RRGGBB">`, or with one of the sixteen classic names, colours the text up to its
 * end tag, over line ends too. A "<" that begins no such tag is text.
 */
class MarkupReader
{
public:
    StyledLine ReadLine(const std::u16string& line);

private:
    bool ReadTag(const std::u16string& line, std::size_t* at);
    void BeginFont(const std::string& tag);
    std::uint32_t Colour() const { return _fonts.empty() ? default_text_colour : _fonts.back(); }

    std::vector<std::uint32_t> _fonts; ///< colours of the font tags that are open
};

} // namespace kestrin_play
