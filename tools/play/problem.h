/**
 * Something wrong with an input file, told so that its owner can put it right.
 */
#pragma once

#include <string>
#include <vector>

namespace kestrin_play {

/** `message` says what is wrong, `remedy` what to do about it. Line 0 means the whole file. */
struct Problem
{
    int line;
    std::string message;
    std::string remedy;
};

using Problems = std::vector<Problem>;

/** "FILE:LINE: message; remedy", without a line end. */
std::string Describe(const std::string& file, const Problem& problem);

/** Bytes made safe to print: in quotes, cut at 40, everything but plain ASCII as \xNN. */
std::string Quoted(const std::string& bytes);

} // namespace kestrin_play
