/**
 * SubRip subtitles.
 *
 * A file is a sequence of cues with an empty line after each:
 *
 *     1
 *     00:00:01,000 --> 00:00:03,500
 *     Two lines
 *     at most, usually
 *
 * Structure is read before text is decoded, so that one cue with a damaged text costs that cue
 * only. That is safe in every encoding offered: digits, "-->" and line ends never occur inside a
 * longer character.
 */
#pragma once

#include "encoding.h"
#include "problem.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kestrin_play {

/** A line of text, still as it stands in the file; UTF-16 units are in host order. */
struct TextLine
{
    int line;
    std::string bytes;
};

/** Shown from `start` up to but not including `end`, both in milliseconds. */
struct Cue
{
    int line; ///< of the times
    std::string number;
    std::int64_t start;
    std::int64_t end;
    std::vector<TextLine> text;
};

struct Subtitles
{
    std::vector<Cue> cues; ///< by start time; those that start together in file order
    Problems problems;     ///< one for each cue that was left out
};

/** Never fails: what cannot be read is skipped and told in `problems`. */
Subtitles ParseSubtitles(const std::string& content, const Encoding& encoding);

/** "00:01:02,500" */
std::string FormatTime(std::int64_t milliseconds);

} // namespace kestrin_play
