#include "fonts.h"

#include "encoding.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace kestrin_play {
namespace {

namespace fs = std::filesystem;
using zelxxx::ResIndex;

/** The engine keeps this many faces open; a further one would take another's place. */
constexpr std::size_t most_fonts = 16;
constexpr std::size_t fonts_per_resource = 2;

/** Blanks, and what only shapes and breaks lines: soft hyphen, joiners, direction marks. */
bool NeedsNoShape(char16_t unit)
{
    return unit == u' ' || unit == 0xA0 || unit == 0x3000 || unit == 0xAD ||
           (unit >= 0x200B && unit <= 0x200F) || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2060 && unit <= 0x2069);
}

} // namespace

struct FontSet::Faces
{
    FT_Library library = nullptr;
    std::vector<FT_Face> faces;

    ~Faces()
    {
        for (const FT_Face face : faces)
            FT_Done_Face(face);
        FT_Done_FreeType(library);
    }

    void Open(const std::string& file)
    {
        FT_Face face = nullptr;
        if (!fs::exists(file))
            throw std::runtime_error(file + ": no such font file; check the name after --font");
        if (FT_New_Face(library, file.c_str(), 0, &face) != 0)
            throw std::runtime_error(file + ": not a readable font; name a TrueType or OpenType "
                                            "file after --font");
        faces.push_back(face);
        if (!FT_IS_SCALABLE(face))
            throw std::runtime_error(file + ": a bitmap font, which has no free size; name a "
                                            "scalable font after --font");
    }

    /** Each unit without a shape once. Halves of characters beyond 16 bits have none anywhere. */
    std::u16string Missing(std::size_t index, const std::u16string& text) const
    {
        std::u16string missing;
        for (const char16_t unit : text) {
            if (!NeedsNoShape(unit) && FT_Get_Char_Index(faces[index], unit) == 0 &&
                missing.find(unit) == std::u16string::npos)
                missing += unit;
        }
        return missing;
    }
};

std::vector<std::string> DefaultFonts()
{
    // Made for television subtitles, but Latin only; then other alphabets; then East Asia.
    std::vector<std::string> files = {"/usr/share/fonts/truetype/tiresias/tiresias_lpfont.ttf",
                                      "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                                      "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"};
    const auto missing = [](const std::string& file) { return !fs::exists(file); };
    files.erase(std::remove_if(files.begin(), files.end(), missing), files.end());
    return files;
}

FontSet::FontSet(const std::vector<std::string>& files, const std::string& directory)
    : _faces(std::make_unique<Faces>())
{
    if (files.empty())
        throw std::runtime_error("no font; install fonts-dejavu-core or name a file with --font");
    if (files.size() > most_fonts)
        throw std::runtime_error(std::to_string(files.size()) + " fonts; name at most " +
                                 std::to_string(most_fonts));
    if (FT_Init_FreeType(&_faces->library) != 0)
        throw std::runtime_error("FreeType does not start");
    for (const std::string& file : files)
        _faces->Open(file);
    OpenResources(files, directory);
}

FontSet::~FontSet() = default;

void FontSet::OpenResources(const std::vector<std::string>& files, const std::string& directory)
{
    // An index file names fonts beside it and no path with a colon: links stand in for the fonts.
    for (std::size_t first = 0; first < files.size(); first += fonts_per_resource) {
        const std::size_t count = std::min(fonts_per_resource, files.size() - first);
        const fs::path index = fs::path(directory) / ("fonts-" + std::to_string(first));
        std::ofstream out(index);
        out << count << '\n';
        for (std::size_t i = first; i < first + count; ++i) {
            const std::string link = "font-" + std::to_string(i);
            fs::create_symlink(fs::absolute(files[i]), fs::path(directory) / link);
            out << "fnt:" << link << '\n';
        }
        out.close();
        zelxxx::PResource resource(out ? zelxxx::zelOpenResource(index.c_str()) : nullptr);
        if (!resource)
            throw std::runtime_error(index.string() + ": cannot be written and read back; make "
                                                      "room there or set TMPDIR");
        for (std::size_t i = 0; i < count; ++i) {
            bool from_memory = false;
            if (!resource->OpenFont(static_cast<ResIndex>(i + 1), from_memory))
                throw std::runtime_error(files[first + i] + ": the engine cannot open this font; "
                                                            "name another after --font");
        }
        _resources.push_back(resource);
    }
}

FontChoice FontSet::Choose(const std::u16string& text) const
{
    std::size_t best = 0;
    std::u16string missing = _faces->Missing(0, text);
    for (std::size_t i = 1; i < _faces->faces.size() && !missing.empty(); ++i) {
        const std::u16string other = _faces->Missing(i, text);
        if (other.size() < missing.size()) {
            best = i;
            missing = other;
        }
    }
    FontChoice choice = {_resources[best / fonts_per_resource],
                         static_cast<ResIndex>(best % fonts_per_resource + 1),
                         {}};
    constexpr std::size_t most_told = 6;
    for (const char16_t unit : missing.substr(0, most_told))
        choice.missing += (choice.missing.empty() ? "" : " ") + CodeName(unit);
    if (missing.size() > most_told)
        choice.missing += " ...";
    return choice;
}

} // namespace kestrin_play
