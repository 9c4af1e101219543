/**
 * The fonts a programme is shown in, and which of them can show a text.
 */
#pragma once

#include "vrel_kestrin_graphic.h"

#include <memory>
#include <string>
#include <vector>

namespace kestrin_play {

/** The fonts used where the user names none; those that are installed. */
std::vector<std::string> DefaultFonts();

/** A font as a text widget takes it. */
struct FontChoice
{
    zelxxx::PResource resource;
    zelxxx::ResIndex index;
    std::string missing; ///< UTF-16 units it has no shape for, as "U+0416 U+4E00"; a few of them
};

/**
 * Font files in order of preference. A resource serves two fonts, so every two files share one.
 */
class FontSet
{
public:
    /**
     * Opens the fonts.
     *
     * @param files      at least one and at most the engine's face cache holds
     * @param directory  where the resource index files are written; outlives the set
     * @throws std::runtime_error that names the file and a remedy
     */
    FontSet(const std::vector<std::string>& files, const std::string& directory);
    ~FontSet();

    FontSet(const FontSet&) = delete;
    FontSet& operator=(const FontSet&) = delete;

    /** The first font that has a shape for every character, or the one that lacks the fewest. */
    FontChoice Choose(const std::u16string& text) const;

private:
    struct Faces; ///< the files as FreeType sees them, to ask which characters they have

    void OpenResources(const std::vector<std::string>& files, const std::string& directory);

    std::unique_ptr<Faces> _faces;
    std::vector<zelxxx::PResource> _resources;
};

} // namespace kestrin_play
