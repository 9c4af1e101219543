#include "problem.h"

#include <cstdio>

namespace kestrin_play {

std::string Describe(const std::string& file, const Problem& problem)
{
    std::string text = file;
    if (problem.line > 0)
        text += ":" + std::to_string(problem.line);
    text += ": " + problem.message;
    if (!problem.remedy.empty())
        text += "; " + problem.remedy;
    return text;
}

std::string Quoted(const std::string& bytes)
{
    constexpr std::size_t longest = 40;
    std::string text = "\"";
    for (const char byte : bytes.substr(0, longest)) {
        if (byte >= ' ' && byte <= '~') {
            text += byte;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(byte));
            text += escape;
        }
    }
    return text + (bytes.size() > longest ? "...\"" : "\"");
}

} // namespace kestrin_play
