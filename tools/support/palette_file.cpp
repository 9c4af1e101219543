#include "palette_file.h"

#include "whole_file.h"

#include <algorithm>
#include <charconv>
#include <sstream>

namespace kestrin_tools {
namespace {

constexpr char gimp_signature[] = "GIMP Palette";

std::uint32_t Byte(const std::string& bytes, std::size_t at)
{
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
}

constexpr std::uint32_t Argb(std::uint32_t alpha, std::uint32_t red, std::uint32_t green,
                             std::uint32_t blue)
{
    return alpha << 24 | red << 16 | green << 8 | blue;
}

std::string ReadOrFail(const std::string& path)
{
    try {
        return ReadWhole(path);
    } catch (const FileError& error) {
        throw PaletteError(error.what());
    }
}

std::string NextLine(std::istream& lines)
{
    std::string line;
    std::getline(lines, line);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

/** Takes a number of 0 to 255 off the front of a line, after blanks; false if there is none. */
bool TakeChannel(std::string& line, std::uint32_t* channel)
{
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos)
        return false;
    const char* begin = line.data() + first;
    const char* end = line.data() + line.size();
    const auto [rest, failed] = std::from_chars(begin, end, *channel);
    if (failed != std::errc() || *channel > 255 || (rest != end && *rest != ' ' && *rest != '\t'))
        return false;
    line.erase(0, static_cast<std::size_t>(rest - line.data()));
    return true;
}

/** Whether a line says something that is not a colour. */
bool IsRemark(const std::string& line)
{
    const std::size_t first = line.find_first_not_of(" \t");
    return first == std::string::npos || line[first] == '#' || line.rfind("Columns:", 0) == 0;
}

} // namespace

Palette FixedPalette()
{
    constexpr std::uint32_t semi_opacity = 255 - 0x4C;
    constexpr std::uint32_t greys[] = {0x2A, 0x55, 0xAA, 0xD4};
    constexpr std::uint32_t cube_greens[] = {0, 31, 63, 95, 127, 159, 191, 223, 255};
    constexpr std::uint32_t cube_reds[] = {0, 63, 127, 191, 255};
    constexpr std::uint32_t cube_blues[] = {0, 127, 255};

    Palette palette = {};
    auto next = palette.begin() + 1;
    for (std::uint32_t green = 0; green < 6; ++green) {
        for (std::uint32_t red = 0; red < 4; ++red) {
            for (std::uint32_t blue = 0; blue < 2; ++blue)
                *next++ = Argb(semi_opacity, 85 * red, 51 * green, 255 * blue);
        }
    }
    for (const std::uint32_t grey : greys)
        *next++ = Argb(255, grey, grey, grey);
    for (const std::uint32_t red : cube_reds) {
        for (const std::uint32_t green : cube_greens) {
            for (const std::uint32_t blue : cube_blues)
                *next++ = Argb(255, red, green, blue);
        }
    }
    return palette;
}

PaletteReport InspectPalette(const std::string& path)
{
    const std::string bytes = ReadOrFail(path);
    PaletteReport report;
    report.size = bytes.size();
    for (std::size_t i = 0; i < report.palette.size(); ++i)
        report.palette[i] = Argb(Byte(bytes, 4 * i), Byte(bytes, 4 * i + 1), Byte(bytes, 4 * i + 2),
                                 Byte(bytes, 4 * i + 3));
    const std::string held = "it has " + std::to_string(report.size) + " bytes instead of 1024";
    if (report.size < palette_file_size) {
        const std::size_t whole = report.size / 4;
        report.damage.push_back(held + ": the colours from index " +
                                std::to_string(whole + (report.size % 4 != 0)) +
                                " on are transparent black");
        if (report.size % 4 != 0)
            report.damage.push_back("it ends within the colour of index " + std::to_string(whole));
    } else if (report.size > palette_file_size) {
        report.damage.push_back(held + ": what follows the first 1024 is not read");
    }
    return report;
}

Palette ReadPalette(const std::string& path)
{
    const PaletteReport report = InspectPalette(path);
    if (!report.damage.empty())
        throw PaletteError(path + ": no palette file: " + report.damage.front());
    return report.palette;
}

std::string PackPalette(const Palette& palette)
{
    std::string bytes;
    for (const std::uint32_t colour : palette) {
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            bytes.push_back(static_cast<char>(colour >> shift & 0xff));
    }
    return bytes;
}

bool IsGimpPalette(const std::string& path)
{
    try {
        return ReadWhole(path, sizeof gimp_signature - 1) == gimp_signature;
    } catch (const FileError&) {
        return false;
    }
}

GimpPalette ReadGimpPalette(const std::string& path)
{
    std::istringstream lines(ReadOrFail(path));
    if (NextLine(lines).rfind(gimp_signature, 0) != 0)
        throw PaletteError(path + ": line 1 is not \"GIMP Palette\"");
    GimpPalette gimp;
    for (int number = 2; lines.peek() != std::istringstream::traits_type::eof(); ++number) {
        std::string line = NextLine(lines);
        if (IsRemark(line))
            continue;
        if (line.rfind("Name:", 0) == 0) {
            gimp.name = line.substr(std::min(line.find_first_not_of(" \t", 5), line.size()));
            continue;
        }
        std::string place = path + ": line " + std::to_string(number);
        std::uint32_t red = 0, green = 0, blue = 0;
        const std::string written = line;
        if (!TakeChannel(line, &red) || !TakeChannel(line, &green) || !TakeChannel(line, &blue))
            throw PaletteError(place.append(" is no colour: \"")
                                   .append(written)
                                   .append("\"; write red, green and blue from 0 to 255, and a "
                                           "name if you like"));
        if (gimp.count == static_cast<int>(gimp.palette.size()))
            throw PaletteError(place.append(" is a colour too many: a display has 256"));
        gimp.palette[static_cast<std::size_t>(gimp.count++)] = Argb(255, red, green, blue);
    }
    if (gimp.count == 0)
        throw PaletteError(path + ": has no colour");
    return gimp;
}

} // namespace kestrin_tools
