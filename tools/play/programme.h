/**
 * A subtitle file made ready to be shown.
 */
#pragma once

#include "encoding.h"
#include "fonts.h"
#include "markup.h"
#include "report.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kestrin_play {

struct CaptionLine
{
    int line; ///< in the file
    StyledLine styled;
    FontChoice font;
};

/** A cue whose text can be shown, from `start` up to but not including `end`; milliseconds. */
struct Caption
{
    int line; ///< of its times in the file
    std::int64_t start;
    std::int64_t end;
    std::vector<CaptionLine> lines;
};

/** By start time. */
using Programme = std::vector<Caption>;

/**
 * Reads a file. Cues that cannot be shown are told to the report and left out.
 *
 * @throws std::runtime_error with a remedy if the file as a whole cannot be read
 */
Programme LoadProgramme(const std::string& file, const Encoding& encoding, Report& report);

/** Gives each line a font; one for all lines of a caption where one can show them. */
void ChooseFonts(Programme& programme, const FontSet& fonts, Report& report);

} // namespace kestrin_play
